#pragma once
// Strict reading of a JSON tree: every accessor checks type and range and names
// the JSON path in its error.

#include "JsonTree.h"

#include <initializer_list>
#include <optional>

namespace MarloHost
{

/// A value with its place in the file.
class JsonCursor
{
public:
    JsonCursor(JsonValue const& value, QString const& fileName);

    JsonValue const& value() const;
    QString path() const;

    /// @throws KORV_BadFile "file: path: cause"
    [[noreturn]] void fail(QString const& cause) const;

    /// A text without control characters.
    QString string() const;
    bool boolean() const;
    double number(double least, double most) const;
    int integer(int least, int most) const;

    /// The elements of an array of objects or strings.
    std::vector<JsonCursor> elements() const;

    /// The numbers of a flat array.
    std::vector<double> const& numbers() const;

    /// A flat array of exactly `count` numbers.
    std::vector<double> const& numbers(std::size_t count) const;

    /// A flat array of whole numbers.
    std::vector<int> integers(int least, int most) const;

    /// A flat array of whole numbers that ascend.
    std::vector<int> ascendingIntegers(int least, int most) const;

private:
    friend class JsonObject;
    JsonCursor(JsonValue const& value, JsonCursor const& parent, std::string const* key, std::size_t index);
    std::vector<int> wholeNumbers(int least, int most, bool ascending) const;
    [[noreturn]] void wrongType(char const* expected) const;

    JsonValue const* m_value;
    QString m_fileName;
    QString m_path;
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
    std::vector<JsonCursor> elements(char const* key) const;

private:
    JsonCursor m_cursor;
};

}
