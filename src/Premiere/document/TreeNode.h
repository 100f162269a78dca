#pragma once
// The objects of a Premiere document: flat elements under the root that point to each other,
// made of a tree.

#include "Premiere/document/Attributes.h"

#include <QDomDocument>
#include <QVector>
#include <boost/enable_shared_from_this.hpp>
#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>

#include <memory>

namespace Export::Premiere
{

/// Gives nodes their identifiers.
class IDVisitor
{
public:
    virtual void reset() = 0;
    virtual void visitUnique(ObjectUID& target) = 0;
    virtual void visit(ObjectID& target) = 0;
    virtual ~IDVisitor();
};

/// Counts numbers from 0 and draws the other identifiers.
class IDSupplier : public IDVisitor
{
public:
    explicit IDSupplier(ExportEnvironment& environment);

    /// Counts from 0 again.
    void reset() override;
    void visitUnique(ObjectUID& target) override;
    void visit(ObjectID& target) override;

private:
    ExportEnvironment& m_environment;
    ObjectID m_next;
};

/// An object of the document. Nodes are made by boost::make_shared and only then added to
/// their parent.
class TreeNode : public boost::enable_shared_from_this<TreeNode>
{
public:
    TreeNode(QString const& tag, QUuid const& classOfNode, int versionOfClass);
    TreeNode(TreeNode const&) = delete;
    TreeNode& operator=(TreeNode const&) = delete;
    virtual ~TreeNode();

    virtual QString tagName() const;
    virtual NodeID const& nodeId() const = 0;
    virtual void assignId(IDVisitor& visitor) = 0;

    /// Whether the node and what hangs on it are written.
    virtual bool isExportable() const;

    /// The element with its attributes.
    virtual QDomElement makeElement(QDomDocument& document) const;

    /// Adds what is in the element.
    virtual void writeContent(QDomElement& element) const = 0;

    Version const version;
    ClassID const classId;

    /// In the order of their identifiers.
    QVector<boost::shared_ptr<TreeNode>> children;

protected:
    /// Makes a node and adds it to the children.
    template <typename Node, typename... Arguments>
    boost::shared_ptr<Node> addChild(Arguments&&... arguments)
    {
        auto const node = boost::make_shared<Node>(std::forward<Arguments>(arguments)...);
        children.append(node);
        return node;
    }

private:
    QString m_tag;
};

/// A node that others point to.
class IndexedNode : public TreeNode
{
public:
    using TreeNode::TreeNode;
};

/// By a number within the document.
class IndexedObject : public IndexedNode
{
public:
    using IndexedNode::IndexedNode;
    NodeID const& nodeId() const override;
    void assignId(IDVisitor& visitor) override;

private:
    ObjectID m_id;
};

/// By an identifier that is unique everywhere; one that is set stays.
class UniqueIndexedObject : public IndexedNode
{
public:
    using IndexedNode::IndexedNode;
    NodeID const& nodeId() const override;
    void assignId(IDVisitor& visitor) override;

private:
    ObjectUID m_id;
};

/// Writes a tree under an element of the document, breadth first.
/// @return false when there is nothing to write; then the element stays empty
bool writeTree(boost::shared_ptr<TreeNode> const& root, QDomDocument& document, QDomElement& parent,
               ExportEnvironment& environment);

}
