#include "Writing/Dom.h"

#include "Writing/TextBuffer.h"
#include "Writing/ThrowHelpers.h"

#include <QMap>
#include <QRegularExpression>
#include <QStringList>
#include <QStringView>
#include <QTextStream>

#include <algorithm>
#include <array>
#include <deque>
#include <vector>

namespace Export
{

namespace
{

// Where a text stands decides which characters are written as references.
enum class Place
{
    Plain,
    Content,
    Attribute
};

// Null for what stands there as it is.
char const* referenceTo(ushort c, Place place)
{
    bool const isAttribute = place == Place::Attribute;
    switch (place == Place::Plain ? 0 : c)
    {
    case '<':
        return "&lt;";
    case '&':
        return "&amp;";
    case '\r':
        return "&#xd;";
    case '\n':
        return isAttribute ? "&#xa;" : nullptr;
    case '\t':
        return isAttribute ? "&#x9;" : nullptr;
    case '"':
        return isAttribute ? "&quot;" : nullptr;
    default:
        return nullptr;
    }
}

bool isPlain(ushort c)
{
    return c >= ' ' && c < 0x80 && c != '<' && c != '>' && c != '&' && c != '"';
}

bool isInXml(ushort c)
{
    return c >= ' ' ? !QChar(c).isSurrogate() && c < 0xfffe : c == '\t' || c == '\n' || c == '\r';
}

// The text as it grows. Characters gather in a small piece first: there each of them
// costs a comparison and a store.
class XmlText
{
public:
    void add(char c)
    {
        if (m_filled == m_piece.size())
        {
            flush();
        }
        m_piece[m_filled++] = c;
    }

    void add(char const* ascii)
    {
        for (; *ascii != '\0'; ++ascii)
        {
            add(*ascii);
        }
    }

    void add(QStringView text, Place place)
    {
        QChar const* const end = text.end();
        for (QChar const* at = text.begin(); at != end; ++at)
        {
            ushort const c = at->unicode();
            if (isPlain(c))
            {
                add(static_cast<char>(c));
            }
            else if (at->isHighSurrogate() && at + 1 != end && at[1].isLowSurrogate())
            {
                addCodePoint(QChar::surrogateToUcs4(at[0], at[1]));
                ++at;
            }
            else
            {
                addSpecial(c, place);
            }
        }
    }

    void addBlanks(qint64 count)
    {
        m_buffer.require(static_cast<qint64>(m_filled) + count);
        for (; count > 0; --count)
        {
            add(' ');
        }
    }

    QByteArray take()
    {
        flush();
        return m_buffer.bytes();
    }

private:
    void addSpecial(ushort c, Place place)
    {
        if (char const* const reference = referenceTo(c, place))
        {
            add(reference);
        }
        else if (c == '>' && place != Place::Plain && endsWithTwoBrackets())
        {
            add("&gt;");
        }
        else
        {
            addCodePoint(isInXml(c) ? c : ushort(QChar::ReplacementCharacter));
        }
    }

    void addCodePoint(uint c)
    {
        constexpr std::array<uint, 4> HEADS = {0, 0xc0, 0xe0, 0xf0};
        uint rest = c < 0x80 ? 0 : c < 0x800 ? 1 : c < 0x10000 ? 2 : 3;
        add(static_cast<char>(HEADS[rest] | (c >> (6 * rest))));
        while (rest-- > 0)
        {
            add(static_cast<char>(0x80 | ((c >> (6 * rest)) & 0x3f)));
        }
    }

    // Of one text or of two in a row: "]]>" may not stand in either.
    bool endsWithTwoBrackets()
    {
        if (m_filled < 2)
        {
            flush();
            return m_buffer.bytes().endsWith("]]");
        }
        return m_piece[m_filled - 1] == ']' && m_piece[m_filled - 2] == ']';
    }

    void flush()
    {
        m_buffer << QByteArray::fromRawData(m_piece.data(), static_cast<int>(m_filled));
        m_filled = 0;
    }

    TextBuffer m_buffer{QStringLiteral("Export fewer layers or fewer frames.")};
    std::array<char, 1 << 14> m_piece;
    std::size_t m_filled = 0;
};

// Of the characters beyond ASCII, names are taken to hold the right ones.
void checkName(QString const& name)
{
    auto const isWrong = [](QChar c)
    {
        ushort const u = c.unicode();
        bool const isLetter = (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') || u >= 0x80;
        return !isLetter && (u < '-' || u > ':' || u == '/') && u != '_';
    };
    bool const startsWrong = name.isEmpty() || (name.front() >= QLatin1Char('-') && name.front() <= QLatin1Char('9'));
    if (startsWrong || std::any_of(name.begin(), name.end(), isWrong))
    {
        throwBadArgument(QStringLiteral("\"%1\" can't be a name in XML.").arg(name));
    }
}

void checkEncoding(QString const& declaration)
{
    static QRegularExpression const pattern(QStringLiteral("encoding\\s*=\\s*[\"']([^\"']*)[\"']"));
    QString const encoding = pattern.match(declaration).captured(1);
    if (!encoding.isEmpty() && encoding.compare(QLatin1String("UTF-8"), Qt::CaseInsensitive) != 0)
    {
        throwBadArgument(QStringLiteral("The XML document declares the encoding %1 instead of UTF-8.").arg(encoding));
    }
}

QString textByQt(QDomNode const& node)
{
    QString text;
    QTextStream stream(&text);
    node.save(stream, 0);
    stream.flush();
    return text;
}

// Only a type that was read from a file has entities and notations.
QString doctypeText(QDomDocumentType const& type)
{
    if (type.entities().count() + type.notations().count() < 2)
    {
        return textByQt(type);
    }
    QString text = textByQt(QDomImplementation().createDocumentType(type.name(), type.publicId(), type.systemId()));
    text.chop(2);
    text += QLatin1String(" [\n");
    for (QDomNamedNodeMap const& nodes : {type.notations(), type.entities()})
    {
        QMap<QString, QString> texts;
        for (int i = 0; i < nodes.count(); ++i)
        {
            texts.insert(nodes.item(i).nodeName(), textByQt(nodes.item(i)));
        }
        text += QStringList(texts.values()).join(QString());
    }
    return text + QLatin1String("]>\n");
}

struct Attribute
{
    QString name;
    QString value;
    QString prefix;
    QString namespaceUri; // null without one
};

// Where the writer stands among the children of a node. The handles and names of nodes
// are what saving takes its time for: they are made once.
struct Level
{
    explicit Level(QDomNode const& parent) : node(parent.firstChild())
    {
    }
    QDomNode node;
    QString name; // of an element, from its start to its end
    bool followsText = false;
};

class DomWriter
{
public:
    explicit DomWriter(int indent) : m_indent(indent)
    {
    }

    // Without recursion, as a tree may be deeper than the stack.
    QByteArray write(QDomDocument const& document)
    {
        m_levels.emplace_back(document);
        addProlog(document);
        while (!m_levels.empty())
        {
            Level& level = m_levels.back();
            if (level.node.isElement())
            {
                addElementStart(level);
            }
            else if (!level.node.isNull())
            {
                addLeaf(level);
                goOn(level);
            }
            else
            {
                bool const endsWithText = level.followsText;
                m_levels.pop_back();
                addElementEnd(endsWithText);
            }
        }
        return m_text.take();
    }

private:
    void addProlog(QDomDocument const& document)
    {
        Level& level = m_levels.back();
        if (level.node.isProcessingInstruction() && level.node.nodeName() == QLatin1String("xml"))
        {
            checkEncoding(level.node.nodeValue());
            addLeaf(level);
            goOn(level);
        }
        if (!level.node.isNull())
        {
            m_text.add(doctypeText(document.doctype()), Place::Plain);
        }
    }

    void addElementStart(Level& level)
    {
        indentUnless(level.followsText);
        level.name = level.node.nodeName();
        addName("<", level.name);
        m_declaredPrefixes.clear();
        addNamespace(level.node.prefix(), level.node.namespaceURI());
        if (level.node.hasAttributes())
        {
            addAttributes(level.node.attributes());
        }
        Level const& content = m_levels.emplace_back(level.node);
        if (content.node.isNull())
        {
            m_levels.pop_back();
            m_text.add("/>");
            goOn(level);
            return;
        }
        m_text.add(m_indent == -1 || content.node.isText() ? ">" : ">\n");
    }

    // Of the element that the last level is in, if any.
    void addElementEnd(bool endsWithText)
    {
        if (!m_levels.empty())
        {
            indentUnless(endsWithText);
            m_text.add("</");
            m_text.add(m_levels.back().name, Place::Plain);
            m_text.add('>');
            goOn(m_levels.back());
        }
    }

    void goOn(Level& level)
    {
        // A comment ends its line in any case.
        bool const endsLine = level.node.isComment() || (level.node.isElement() && m_indent != -1);
        level.followsText = level.node.isText();
        level.node = level.node.nextSibling();
        if (endsLine && !level.node.isText())
        {
            m_text.add('\n');
        }
    }

    void addLeaf(Level const& level)
    {
        QDomNode const& node = level.node;
        switch (node.nodeType())
        {
        case QDomNode::TextNode:
            return m_text.add(node.nodeValue(), Place::Content);
        case QDomNode::CDATASectionNode:
            return addCharacterData(node.nodeValue());
        case QDomNode::CommentNode:
            indentUnless(level.followsText);
            return addComment(node.nodeValue());
        case QDomNode::ProcessingInstructionNode:
            return addInstruction(node);
        case QDomNode::EntityReferenceNode:
            addName("&", node.nodeName());
            return m_text.add(';');
        default: // a tree holds no others
            return;
        }
    }

    void addAttributes(QDomNamedNodeMap const& attributes)
    {
        m_attributes.clear();
        for (int i = 0, count = attributes.count(); i < count; ++i)
        {
            QDomNode const node = attributes.item(i);
            m_attributes.push_back({node.nodeName(), node.nodeValue(), node.prefix(), node.namespaceURI()});
        }
        std::sort(m_attributes.begin(), m_attributes.end(),
                  [](Attribute const& left, Attribute const& right) { return left.name < right.name; });
        QString const* before = nullptr;
        for (Attribute const& attribute : m_attributes)
        {
            if (before != nullptr && *before == attribute.name)
            {
                throwBadArgument(QStringLiteral("An XML element has two attributes \"%1\".").arg(attribute.name));
            }
            before = &attribute.name;
            addAttribute(attribute.name, attribute.value);
            if (!attribute.prefix.isEmpty())
            {
                addNamespace(attribute.prefix, attribute.namespaceUri);
            }
        }
    }

    void addAttribute(QString const& name, QString const& value)
    {
        addName(" ", name);
        m_text.add("=\"");
        m_text.add(value, Place::Attribute);
        m_text.add('"');
    }

    // Once in an element for each prefix.
    void addNamespace(QString const& prefix, QString const& uri)
    {
        if (!uri.isNull() && !m_declaredPrefixes.contains(prefix))
        {
            m_declaredPrefixes.append(prefix);
            addAttribute(QLatin1String(prefix.isEmpty() ? "xmlns" : "xmlns:") + prefix, uri);
        }
    }

    void addCharacterData(QString data)
    {
        m_text.add("<![CDATA[");
        m_text.add(data.replace(QLatin1String("]]>"), QLatin1String("]]]]><![CDATA[>")), Place::Plain);
        m_text.add("]]>");
    }

    void addComment(QString text)
    {
        while (text.contains(QLatin1String("--")))
        {
            text.replace(QLatin1String("--"), QLatin1String("- -"));
        }
        m_text.add("<!--");
        m_text.add(text, Place::Plain);
        m_text.add(text.endsWith(QLatin1Char('-')) ? " -->" : "-->");
    }

    void addInstruction(QDomNode const& node)
    {
        addName("<?", node.nodeName());
        m_text.add(' ');
        m_text.add(node.nodeValue().replace(QLatin1String("?>"), QLatin1String("? >")), Place::Plain);
        m_text.add("?>\n");
    }

    void addName(char const* before, QString const& name)
    {
        checkName(name);
        m_text.add(before);
        m_text.add(name, Place::Plain);
    }

    void indentUnless(bool isBesideText)
    {
        if (!isBesideText)
        {
            m_text.addBlanks(m_indent * static_cast<qint64>(m_levels.size() - 1));
        }
    }

    int const m_indent;
    XmlText m_text;
    std::deque<Level> m_levels;
    std::vector<Attribute> m_attributes;
    QStringList m_declaredPrefixes; // in the element
};

}

QByteArray domText(QDomDocument const& document, int indent)
{
    return DomWriter(indent).write(document);
}

QDomElement appendElement(QDomNode parent, QString const& name)
{
    QDomElement const element = parent.ownerDocument().createElement(name);
    if (parent.isNull() || parent.appendChild(element).isNull())
    {
        throwBadArgument(QStringLiteral("The element \"%1\" can't be added to the XML document.").arg(name));
    }
    return element;
}

QDomElement appendElement(QDomNode const& parent, QString const& name, QString const& text)
{
    QDomElement element = appendElement(parent, name);
    element.appendChild(element.ownerDocument().createTextNode(text));
    return element;
}

}
