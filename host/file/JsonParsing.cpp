// From the text of a JSON file to its tree.

#include "JsonTree.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstring>

namespace MarloHost
{

namespace
{

/// Fills a tree; nlohmann's parser calls it without recursion, so that the depth of a
/// hostile text never reaches the stack.
class TreeFiller
{
public:
    TreeFiller(JsonTree const& tree, JsonTree::Content& content) : m_tree(tree), m_content(content)
    {
    }

    bool null()
    {
        place({JsonNode::Null, 0, {0}});
        return true;
    }

    bool boolean(bool value)
    {
        place({JsonNode::Bool, value ? 1U : 0U, {0}});
        return true;
    }

    bool number_integer(std::int64_t value)
    {
        return number(static_cast<double>(value));
    }

    bool number_unsigned(std::uint64_t value)
    {
        return number(static_cast<double>(value));
    }

    bool number_float(double value, std::string const&)
    {
        return number(value);
    }

    bool string(std::string& value)
    {
        place(kept(value));
        return true;
    }

    bool binary(nlohmann::json::binary_t&)
    {
        return false; // never in text
    }

    bool start_object(std::size_t)
    {
        open(JsonNode::Object);
        return true;
    }

    bool key(std::string& name)
    {
        OpenNode const& object = m_open.back();
        auto const firstKey = m_keys.begin() + static_cast<std::ptrdiff_t>(object.firstKey);
        if (std::find(firstKey, m_keys.end(), name) != m_keys.end())
        {
            m_tree.fail(jsonPathKey(path(false), name), QStringLiteral("the key stands here twice; remove one"));
        }
        if (object.node.count == MAX_JSON_KEYS)
        {
            m_tree.fail(path(false), QStringLiteral("an object has more than %1 keys").arg(MAX_JSON_KEYS));
        }
        ++m_open.back().node.count;
        JsonNode const node = kept(name);
        append(node);
        m_keys.emplace_back(node.payload.characters, node.count);
        return true;
    }

    bool end_object()
    {
        m_keys.resize(m_open.back().firstKey);
        return close();
    }

    bool start_array(std::size_t)
    {
        open(JsonNode::Numbers);
        return true;
    }

    bool end_array()
    {
        JsonNode& array = m_open.back().node;
        if (array.kind == JsonNode::Array)
        {
            return close();
        }
        array.count = static_cast<std::uint32_t>(m_numbers.size());
        if (m_numbers.size() > JsonTree::Content::LONG_ARRAY)
        {
            array.payload.firstNumber = m_content.longArrays.size();
            m_content.longArrays.push_back(std::move(m_numbers));
            m_numbers = std::vector<double>();
        }
        else
        {
            array.payload.firstNumber = m_content.numbers.size();
            m_content.numbers.insert(m_content.numbers.end(), m_numbers.begin(), m_numbers.end());
            m_numbers.clear();
        }
        return settle();
    }

    bool parse_error(std::size_t position, std::string const&, nlohmann::json::exception const& error)
    {
        m_errorPosition = position;
        std::string_view const what = error.what();
        std::size_t const words = what.find("] ");
        m_error = what.substr(words == std::string_view::npos ? 0 : words + 2, LONGEST_ERROR);
        return false;
    }

    /// Raises what parse_error was told.
    [[noreturn]] void failAtError(QByteArray const& text) const
    {
        // The parser's text starts with its own "parse error at line.., column..: ".
        std::size_t const colon = m_error.find(": ");
        std::string const cause = colon == std::string::npos ? m_error : m_error.substr(colon + 2);
        auto const size = static_cast<int>(std::max<std::size_t>(m_errorPosition, 1)) - 1;
        QByteArray const before = QByteArray::fromRawData(text.constData(), std::min(size, text.size()));
        int const line = before.count('\n') + 1;
        int const column = before.size() - before.lastIndexOf('\n');
        QString shown = QString::fromStdString(cause);
        shown = shown.size() > 200 ? shown.left(200) + QStringLiteral("...") : shown;
        m_tree.fail(
            path(true),
            QStringLiteral("line %1, column %2: %3").arg(QString::number(line), QString::number(column), shown));
    }

private:
    static constexpr std::size_t LONGEST_ERROR = 1000;

    struct OpenNode
    {
        JsonNode node;
        std::size_t index;

        /// Where the keys of an object start in `m_keys`.
        std::size_t firstKey;
    };

    /// Where the text is: of the innermost open value, or (`insideIt`) of what is
    /// read in it.
    QString path(bool insideIt) const
    {
        QString text = QStringLiteral("$");
        for (std::size_t i = 0; i < m_open.size(); ++i)
        {
            bool const innermost = i + 1 == m_open.size();
            if (innermost && !insideIt)
            {
                break;
            }
            JsonNode const& node = m_open[i].node;
            if (node.kind == JsonNode::Object)
            {
                std::size_t const keysEnd = innermost ? m_keys.size() : m_open[i + 1].firstKey;
                text = keysEnd == m_open[i].firstKey ? text : jsonPathKey(text, m_keys[keysEnd - 1]);
            }
            else
            {
                std::size_t const next = node.kind == JsonNode::Array ? node.count : m_numbers.size();
                text = jsonPathIndex(text, innermost ? next : next - 1);
            }
        }
        return text;
    }

    bool number(double value)
    {
        if (!m_open.empty() && m_open.back().node.kind == JsonNode::Numbers)
        {
            m_numbers.push_back(value);
            return true;
        }
        place({JsonNode::Number, 0, {value}});
        return true;
    }

    void open(JsonNode::Kind kind)
    {
        if (m_open.size() == static_cast<std::size_t>(MAX_JSON_DEPTH))
        {
            m_tree.fail(path(true), QStringLiteral("nested deeper than %1 levels").arg(MAX_JSON_DEPTH));
        }
        JsonNode const node{kind, 0, {0}};
        m_open.push_back({node, place(node), m_keys.size()});
    }

    bool close()
    {
        m_open.back().node.payload.end = m_content.nodeCount;
        return settle();
    }

    /// The innermost open node is as it will stay.
    bool settle()
    {
        if (m_open.size() == m_mixedDepth)
        {
            m_tree.fail(m_mixedPath, m_mixedCause);
        }
        OpenNode const& open = m_open.back();
        JsonTree::Block& block = *m_content.blocks[open.index / JsonTree::Block::SIZE];
        std::size_t const inBlock = open.index % JsonTree::Block::SIZE;
        block.payloads[inBlock] = open.node.payload;
        block.counts[inBlock] = open.node.count;
        block.kinds[inBlock] = open.node.kind;
        m_open.pop_back();
        return true;
    }

    /// Puts a new value where the text is.
    /// @return its index
    std::size_t place(JsonNode const& node)
    {
        if (!m_open.empty() && m_open.back().node.kind != JsonNode::Object)
        {
            JsonNode& array = m_open.back().node;
            if (array.kind == JsonNode::Numbers && !m_numbers.empty())
            {
                endNumbers(array, node);
            }
            array.kind = JsonNode::Array;
            ++array.count;
        }
        return append(node);
    }

    // An array of numbers that turns out to hold others too is wrong wherever it stands;
    // the reader says which of its values is, unless it is long. That is told once the
    // array ends: before, it may turn out that only its bracket is missing.
    [[gnu::cold]] void endNumbers(JsonNode& array, JsonNode const& element)
    {
        if (m_mixedDepth == 0 && m_numbers.size() > JsonTree::Content::LONG_ARRAY)
        {
            m_mixedDepth = m_open.size();
            m_mixedPath = path(true);
            m_mixedCause = QStringLiteral("expected a number, found %1").arg(QLatin1String(element.kindName()));
        }
        else if (m_mixedDepth == 0)
        {
            for (double const number : m_numbers)
            {
                append({JsonNode::Number, 0, {number}});
            }
        }
        array.count = static_cast<std::uint32_t>(m_numbers.size());
        m_numbers.clear();
    }

    std::size_t append(JsonNode const& node)
    {
        std::size_t const inBlock = m_content.nodeCount % JsonTree::Block::SIZE;
        if (inBlock == 0)
        {
            m_content.blocks.push_back(std::make_unique<JsonTree::Block>());
        }
        JsonTree::Block& block = *m_content.blocks.back();
        block.payloads[inBlock] = node.payload;
        block.counts[inBlock] = node.count;
        block.kinds[inBlock] = node.kind;
        return m_content.nodeCount++;
    }

    /// A String that holds the text.
    JsonNode kept(std::string const& text)
    {
        auto* const characters =
            static_cast<char*>(m_content.characters.allocate(std::max<std::size_t>(1, text.size()), 1));
        std::memcpy(characters, text.data(), text.size());
        JsonNode node{JsonNode::String, static_cast<std::uint32_t>(text.size()), {0}};
        node.payload.characters = characters;
        return node;
    }

    JsonTree const& m_tree;
    JsonTree::Content& m_content;
    std::vector<OpenNode> m_open;

    /// Of all open objects.
    std::vector<std::string_view> m_keys;

    /// Of the array that is open.
    std::vector<double> m_numbers;

    /// Of the first long array that holds numbers and other values, from 1; 0 for none.
    std::size_t m_mixedDepth = 0;
    QString m_mixedPath;
    QString m_mixedCause;
    std::size_t m_errorPosition = 0;
    std::string m_error;
};

}

JsonTree::JsonTree(QByteArray const& text, QString const& fileName) : m_fileName(fileName)
{
    TreeFiller filler(*this, m_content);
    if (!nlohmann::json::sax_parse(text.cbegin(), text.cend(), &filler))
    {
        filler.failAtError(text);
    }
}

}
