#include "JsonTree.h"

#include "Host/KORV_Exception.h"

#include <algorithm>
#include <cctype>

namespace MarloHost
{

namespace
{

QString toText(std::string_view text)
{
    return QString::fromUtf8(text.data(), static_cast<int>(text.size()));
}

/// The longest piece of a file's own text that an error repeats.
constexpr std::size_t MAX_QUOTED = 60;

QString quoted(std::string_view text)
{
    QString shown = toText(text);
    if (shown.size() > static_cast<int>(MAX_QUOTED))
    {
        shown = shown.left(static_cast<int>(MAX_QUOTED)) + QStringLiteral("...");
    }
    for (QChar& c : shown)
    {
        if (!c.isPrint())
        {
            c = QLatin1Char('?');
        }
    }
    return QLatin1Char('"') + shown + QLatin1Char('"');
}

}

char const* JsonNode::kindName() const
{
    switch (kind)
    {
    case Null:
        return "null";
    case Bool:
        return "a boolean";
    case Number:
        return "a number";
    case String:
        return "a string";
    case Numbers:
    case Array:
        return "an array";
    case Object:
        return "an object";
    }
    return "nothing";
}

QString const& JsonTree::fileName() const
{
    return m_fileName;
}

JsonNode JsonTree::node(std::size_t index) const
{
    Block const& block = *m_content.blocks[index / Block::SIZE];
    std::size_t const inBlock = index % Block::SIZE;
    return {block.kinds[inBlock], block.counts[inBlock], block.payloads[inBlock]};
}

std::size_t JsonTree::behind(std::size_t index) const
{
    JsonNode const node = this->node(index);
    return node.kind == JsonNode::Array || node.kind == JsonNode::Object ? node.payload.end : index + 1;
}

std::string_view JsonTree::text(std::size_t stringIndex) const
{
    JsonNode const node = this->node(stringIndex);
    return {node.payload.characters, node.count};
}

std::vector<double> JsonTree::numbers(std::size_t numbersIndex) const
{
    JsonNode const node = this->node(numbersIndex);
    if (node.count > Content::LONG_ARRAY)
    {
        return m_content.longArrays[node.payload.firstNumber];
    }
    auto const first = m_content.numbers.begin() + static_cast<std::ptrdiff_t>(node.payload.firstNumber);
    return std::vector<double>(first, first + node.count);
}

std::vector<double> JsonTree::takeNumbers(std::size_t numbersIndex)
{
    JsonNode const node = this->node(numbersIndex);
    return node.count > Content::LONG_ARRAY ? std::move(m_content.longArrays[node.payload.firstNumber])
                                            : numbers(numbersIndex);
}

QString JsonTree::path(std::size_t index) const
{
    QString text = QStringLiteral("$");
    for (std::size_t at = 0; at != index;)
    {
        bool const isObject = node(at).kind == JsonNode::Object;
        std::size_t child = at + 1;
        for (std::size_t i = 0;; ++i, child = behind(child))
        {
            std::size_t const key = child;
            child += isObject ? 1 : 0;
            if (index < behind(child))
            {
                text = isObject ? jsonPathKey(text, this->text(key)) : jsonPathIndex(text, i);
                break;
            }
        }
        at = child;
    }
    return text;
}

void JsonTree::fail(QString const& path, QString const& cause) const
{
    throw KORV_BadFile(__FILE__, __LINE__, QStringLiteral("%1: %2: %3").arg(m_fileName, path, cause), path);
}

QString jsonPathKey(QString const& path, std::string_view key)
{
    bool const plain = !key.empty() && key.size() <= MAX_QUOTED &&
                       std::all_of(key.begin(), key.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; });
    return plain ? path + QLatin1Char('.') + toText(key) : path + QLatin1Char('[') + quoted(key) + QLatin1Char(']');
}

QString jsonPathIndex(QString const& path, std::size_t index)
{
    return path + QLatin1Char('[') + QString::number(index) + QLatin1Char(']');
}

}
