#include "Premiere/document/Elements.h"

#include "Premiere/document/TreeNode.h"

#include <algorithm>

namespace Export::Premiere
{

qint64 ticks(double seconds)
{
    // The largest double below 2^63.
    constexpr double LATEST = 9223372036854774784.0;
    return static_cast<qint64>(std::clamp(seconds * TICKS_PER_SECOND, -LATEST, LATEST));
}

QDomElement textElement(QDomDocument& document, QString const& tag, QString const& text)
{
    QDomElement element = document.createElement(tag);
    element.appendChild(document.createTextNode(text));
    return element;
}

QDomElement integerElement(QDomDocument& document, QString const& tag, qint32 value)
{
    return textElement(document, tag, QString::number(value));
}

QDomElement integerElement(QDomDocument& document, QString const& tag, qint64 value)
{
    return textElement(document, tag, QString::number(value));
}

QDomElement booleanElement(QDomDocument& document, QString const& tag, bool value)
{
    return textElement(document, tag, value ? QStringLiteral("true") : QStringLiteral("false"));
}

QDomElement ticksElement(QDomDocument& document, QString const& tag, double seconds)
{
    return integerElement(document, tag, ticks(seconds));
}

QDomElement idElement(QDomDocument& document, QString const& tag, QUuid const& id)
{
    return textElement(document, tag, id.toString(QUuid::WithoutBraces));
}

QDomElement referenceElement(QDomDocument& document, QString const& tag, TreeNode const& target)
{
    return addAttribute(document.createElement(tag), target.nodeId().reference());
}

ElementWriter::ElementWriter(QDomElement const& element) : m_element(element), m_document(element.ownerDocument())
{
}

ElementWriter ElementWriter::group(QString const& tag, int version) const
{
    return ElementWriter(
        m_element.appendChild(addAttribute(m_document.createElement(tag), Version(version))).toElement());
}

ElementWriter ElementWriter::item(QString const& tag, int index) const
{
    return ElementWriter(m_element.appendChild(addAttribute(m_document.createElement(tag), Index(index))).toElement());
}

ElementWriter const& ElementWriter::indexedReference(QString const& tag, int index, TreeNode const& target) const
{
    m_element.appendChild(addAttribute(referenceElement(m_document, tag, target), Index(index)));
    return *this;
}

ElementWriter const& ElementWriter::text(QString const& tag, QString const& text) const
{
    m_element.appendChild(textElement(m_document, tag, text));
    return *this;
}

ElementWriter const& ElementWriter::integer(QString const& tag, qint32 value) const
{
    m_element.appendChild(integerElement(m_document, tag, value));
    return *this;
}

ElementWriter const& ElementWriter::integer64(QString const& tag, qint64 value) const
{
    m_element.appendChild(integerElement(m_document, tag, value));
    return *this;
}

ElementWriter const& ElementWriter::boolean(QString const& tag, bool value) const
{
    m_element.appendChild(booleanElement(m_document, tag, value));
    return *this;
}

ElementWriter const& ElementWriter::time(QString const& tag, double seconds) const
{
    m_element.appendChild(ticksElement(m_document, tag, seconds));
    return *this;
}

ElementWriter const& ElementWriter::id(QString const& tag, QUuid const& id) const
{
    m_element.appendChild(idElement(m_document, tag, id));
    return *this;
}

ElementWriter const& ElementWriter::reference(QString const& tag, TreeNode const& target) const
{
    m_element.appendChild(referenceElement(m_document, tag, target));
    return *this;
}

ElementWriter const& ElementWriter::data(QString const& tag, QString const& base64,
                                         ExportEnvironment& environment) const
{
    QDomElement element = addAttribute(m_document.createElement(tag), BinaryHashDummy(environment));
    element = addAttribute(element, Attribute(QStringLiteral("Encoding"), QStringLiteral("base64")));
    element.appendChild(m_document.createTextNode(base64));
    m_element.appendChild(element);
    return *this;
}

}
