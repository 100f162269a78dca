#pragma once
// Strict reading of a JSON tree: every accessor checks type and range and names
// the JSON path in its error.

#include "JsonTree.h"

#include <initializer_list>
#include <optional>

namespace MarloHost
{

class JsonElements;

/// A value in a tree that outlives it.
class JsonCursor
{
public:
    /// The root.
    explicit JsonCursor(JsonTree& tree);

    JsonNode::Kind kind() const;
    QString path() const;

    /// @throws KORV_BadFile "file: path: cause"
    [[noreturn]] void fail(QString const& cause) const;

    /// A text without control characters.
    QString string() const;
    bool boolean() const;
    double number(double least, double most) const;
    int integer(int least, int most) const;

    /// The elements of an array of objects or strings.
    JsonElements elements() const;

    /// How many numbers a flat array holds.
    std::size_t numberCount() const;
    void expectNumbers(std::size_t count) const;

    /// The numbers of a flat array; may be called once for a value.
    std::vector<double> takeNumbers() const;

    /// A flat array of exactly `count` numbers; may be called once for a value.
    std::vector<double> takeNumbers(std::size_t count) const;

    /// A flat array of whole numbers.
    std::vector<int> integers(int least, int most) const;

    /// A flat array of whole numbers that ascend.
    std::vector<int> ascendingIntegers(int least, int most) const;

private:
    friend class JsonElements;
    friend class JsonObject;
    JsonCursor(JsonTree& tree, std::size_t index);
    JsonNode node() const;
    std::vector<int> wholeNumbers(int least, int most, bool ascending) const;
    [[noreturn]] void wrongType(char const* expected) const;

    JsonTree* m_tree;
    std::size_t m_index;
};

/// The elements of an array, one after the other.
class JsonElements
{
public:
    class Iterator
    {
    public:
        explicit Iterator(JsonCursor const& at) : m_at(at)
        {
        }

        JsonCursor const& operator*() const
        {
            return m_at;
        }

        Iterator& operator++()
        {
            m_at.m_index = m_at.m_tree->behind(m_at.m_index);
            return *this;
        }

        bool operator!=(Iterator const& other) const
        {
            return m_at.m_index != other.m_at.m_index;
        }

    private:
        JsonCursor m_at;
    };

    /// None.
    explicit JsonElements(JsonTree& tree);
    Iterator begin() const;
    Iterator end() const;
    std::size_t size() const;

private:
    friend class JsonCursor;
    JsonElements(JsonTree& tree, std::size_t array);

    JsonCursor m_begin;
    JsonCursor m_end;
    std::size_t m_size;
};

/// An object that may hold only the given keys.
class JsonObject
{
public:
    /// @throws KORV_BadFile when it isn't an object or has another key
    JsonObject(JsonCursor const& cursor, std::initializer_list<char const*> keys);

    JsonCursor const& cursor() const;

    /// The value of a key that must be there.
    JsonCursor required(char const* key) const;
    std::optional<JsonCursor> optional(char const* key) const;

    QString string(char const* key, QString const& absent) const;
    bool boolean(char const* key, bool absent) const;
    double number(char const* key, double absent, double least, double most) const;
    int integer(char const* key, int absent, int least, int most) const;
    std::optional<int> optionalInteger(char const* key, int least, int most) const;

    /// The elements of an array; none when the key is absent.
    JsonElements elements(char const* key) const;

private:
    JsonCursor m_cursor;
};

}
