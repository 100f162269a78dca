#pragma once
// The elements that objects of a Premiere document are written with.

#include "Premiere/document/Attributes.h"

#include <QDomDocument>

namespace Export::Premiere
{

class TreeNode;

/// Premiere's unit of time: as many in a second.
constexpr double TICKS_PER_SECOND = 254016000000.0;

/// Whole ticks, cut; the last that there are for times beyond about 36 million seconds.
MARLO_EXPORT_API qint64 ticks(double seconds);

// Each makes an element that belongs to the document, without a parent.

QDomElement textElement(QDomDocument& document, QString const& tag, QString const& text);
QDomElement integerElement(QDomDocument& document, QString const& tag, qint32 value);
QDomElement integerElement(QDomDocument& document, QString const& tag, qint64 value);
QDomElement booleanElement(QDomDocument& document, QString const& tag, bool value);
QDomElement ticksElement(QDomDocument& document, QString const& tag, double seconds);
QDomElement idElement(QDomDocument& document, QString const& tag, QUuid const& id);

/// An empty element that points to a node.
QDomElement referenceElement(QDomDocument& document, QString const& tag, TreeNode const& target);

/// A tag and the text in it.
struct Literal
{
    char const* tag;
    char const* text;
};

/// Appends to an element in the order of the document, so that the code reads like the file.
class ElementWriter
{
public:
    explicit ElementWriter(QDomElement const& element);

    /// Adds an element with a version and writes on inside of it.
    ElementWriter group(QString const& tag, int version) const;

    /// Adds an element that is the n-th of a list, and writes on inside of it.
    ElementWriter item(QString const& tag, int index) const;

    /// Adds the reference of a list's n-th entry.
    ElementWriter const& indexedReference(QString const& tag, int index, TreeNode const& target) const;

    ElementWriter const& text(QString const& tag, QString const& text) const;
    ElementWriter const& integer(QString const& tag, qint32 value) const;
    ElementWriter const& integer64(QString const& tag, qint64 value) const;
    ElementWriter const& boolean(QString const& tag, bool value) const;
    ElementWriter const& time(QString const& tag, double seconds) const;
    ElementWriter const& id(QString const& tag, QUuid const& id) const;
    ElementWriter const& reference(QString const& tag, TreeNode const& target) const;

    /// Data as base 64, with an identifier in place of its hash.
    ElementWriter const& data(QString const& tag, QString const& base64, ExportEnvironment& environment) const;

    template <std::size_t Count>
    ElementWriter const& literals(Literal const (&literals)[Count]) const
    {
        for (Literal const& one : literals)
        {
            text(QString::fromLatin1(one.tag), QString::fromLatin1(one.text));
        }
        return *this;
    }

private:
    mutable QDomElement m_element;
    mutable QDomDocument m_document;
};

}
