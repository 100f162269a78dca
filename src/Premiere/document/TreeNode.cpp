#include "Premiere/document/TreeNode.h"

namespace Export::Premiere
{

namespace
{

using Nodes = QVector<boost::shared_ptr<TreeNode>>;

/// What is to be written, level by level.
Nodes exportableNodes(boost::shared_ptr<TreeNode> const& root)
{
    Nodes queue{root};
    Nodes exportable;
    for (int next = 0; next < queue.size(); ++next)
    {
        boost::shared_ptr<TreeNode> const node = queue[next]->shared_from_this();
        if (node->isExportable())
        {
            exportable.append(node);
            queue += node->children;
        }
    }
    return exportable;
}

}

IDVisitor::~IDVisitor() = default;

IDSupplier::IDSupplier(ExportEnvironment& environment) : m_environment(environment)
{
    reset();
}

void IDSupplier::reset()
{
    m_next = ObjectID(0);
}

void IDSupplier::visitUnique(ObjectUID& target)
{
    target = ObjectUID(m_environment.createUID());
}

void IDSupplier::visit(ObjectID& target)
{
    target = m_next;
    m_next.increment();
}

TreeNode::TreeNode(QString const& tag, QUuid const& classOfNode, int versionOfClass)
    : version(versionOfClass), classId(classOfNode), m_tag(tag)
{
}

TreeNode::~TreeNode() = default;

QString TreeNode::tagName() const
{
    return m_tag;
}

bool TreeNode::isExportable() const
{
    return true;
}

QDomElement TreeNode::makeElement(QDomDocument& document) const
{
    QDomElement element = addAttribute(document.createElement(tagName()), nodeId());
    element = addAttribute(element, classId);
    return addAttribute(element, version);
}

NodeID const& IndexedObject::nodeId() const
{
    return m_id;
}

void IndexedObject::assignId(IDVisitor& visitor)
{
    visitor.visit(m_id);
}

NodeID const& UniqueIndexedObject::nodeId() const
{
    return m_id;
}

void UniqueIndexedObject::assignId(IDVisitor& visitor)
{
    if (m_id.id().isNull())
    {
        visitor.visitUnique(m_id);
    }
}

bool writeTree(boost::shared_ptr<TreeNode> const& root, QDomDocument& document, QDomElement& parent,
               ExportEnvironment& environment)
{
    Nodes const nodes = exportableNodes(root);
    IDSupplier supplier(environment);
    for (boost::shared_ptr<TreeNode> const& node : nodes)
    {
        node->assignId(supplier);
    }
    for (boost::shared_ptr<TreeNode> const& node : nodes)
    {
        QDomElement element = node->makeElement(document);
        parent.appendChild(element);
        node->writeContent(element);
    }
    return !nodes.isEmpty();
}

}
