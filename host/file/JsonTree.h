#pragma once
// JSON text as a tree that is small and fast to fill: one list of small nodes in the
// order of the text, and arrays of numbers as they are. Everything that would make a
// tree dangerous to build (depth, repeated keys) is refused while the
// text is read. Whatever stands in it, a tree takes less than nine times the bytes of
// its text.

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <deque>
#include <memory>
#include <memory_resource>
#include <string_view>
#include <vector>

namespace MarloHost
{

/// Deepest nesting of arrays and objects.
constexpr int MAX_JSON_DEPTH = 32;

/// Most keys of one object.
constexpr std::size_t MAX_JSON_KEYS = 64;

struct JsonNode
{
    enum Kind : std::uint8_t
    {
        Null,
        Bool,
        Number,
        String,
        /// An array of numbers, or an empty one.
        Numbers,
        /// Any other array; its elements follow it.
        Array,
        /// A String and a value for each key follow it.
        Object
    };

    union Payload
    {
        double number;
        char const* characters;

        /// Where Numbers stand in the tree's list of them.
        std::size_t firstNumber;

        /// The node behind the last one in an Array or Object.
        std::size_t end;
    };

    Kind kind = Null;

    /// Bytes of a String, 1 for true, else elements or keys.
    std::uint32_t count = 0;
    Payload payload = {0};

    /// What the value is, in words for an error text.
    char const* kindName() const;
};

class JsonTree
{
public:
    /// Reads the whole text, which isn't needed afterwards.
    /// @param fileName stands in the error texts
    /// @throws KORV_BadFile with file, place and cause in one line; detail() is the
    ///         JSON path
    JsonTree(QByteArray const& text, QString const& fileName);
    JsonTree(JsonTree const&) = delete;
    JsonTree& operator=(JsonTree const&) = delete;

    QString const& fileName() const;

    /// The root is node 0.
    JsonNode node(std::size_t index) const;

    /// The node behind this one and all that is in it.
    std::size_t behind(std::size_t index) const;
    std::string_view text(std::size_t stringIndex) const;
    std::vector<double> numbers(std::size_t numbersIndex) const;

    /// The same without a copy where there are many; may be called once.
    std::vector<double> takeNumbers(std::size_t numbersIndex);

    /// The JSON path of a node.
    QString path(std::size_t index) const;

    /// @throws KORV_BadFile "file: path: cause"
    [[noreturn]] void fail(QString const& path, QString const& cause) const;

    /// Nodes without the bytes that would lie idle between their members. Short enough
    /// for small files, and long enough that nothing but nodes takes memory.
    struct Block
    {
        static constexpr std::size_t SIZE = 512;
        JsonNode::Payload payloads[SIZE];
        std::uint32_t counts[SIZE];
        JsonNode::Kind kinds[SIZE];
    };

    struct Content
    {
        /// Arrays that are longer have their numbers to themselves: long enough that memory
        /// which a growing list holds in reserve isn't touched.
        static constexpr std::size_t LONG_ARRAY = 1 << 16;

        std::vector<std::unique_ptr<Block>> blocks;
        std::size_t nodeCount = 0;

        /// Of short arrays, one behind the other.
        std::deque<double> numbers;

        /// Of long arrays.
        std::vector<std::vector<double>> longArrays;
        std::pmr::monotonic_buffer_resource characters;
    };

private:
    QString m_fileName;
    Content m_content;
};

/// `$.key` and `$[index]` steps appended to a path. Keys that aren't plain words
/// are quoted.
QString jsonPathKey(QString const& path, std::string_view key);
QString jsonPathIndex(QString const& path, std::size_t index);

}
