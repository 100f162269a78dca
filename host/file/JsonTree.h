#pragma once
// JSON text as a tree that is small and fast to fill: arrays of numbers are flat,
// and everything that would make a tree dangerous to build (depth, repeated keys)
// is refused while the text is read.

#include <QByteArray>
#include <QString>

#include <string>
#include <vector>

namespace MarloHost
{

/// Deepest nesting of arrays and objects.
constexpr int MAX_JSON_DEPTH = 32;

/// Most keys of one object.
constexpr std::size_t MAX_JSON_KEYS = 64;

struct JsonValue
{
    enum Kind
    {
        Null,
        Bool,
        Number,
        String,
        /// Only numbers, in `numbers`; an empty array has this kind.
        Numbers,
        Array,
        Object
    };

    Kind kind = Null;
    bool boolean = false;
    double number = 0;
    std::string string;
    std::vector<double> numbers;

    /// Elements of an Array, or values of an Object, whose keys stand in `keys`.
    std::vector<JsonValue> children;
    std::vector<std::string> keys;

    /// What the value is, in words for an error text.
    char const* kindName() const;
};

/// Reads the whole text.
/// @param fileName stands in the error texts
/// @throws KORV_BadFile with file, place and cause in one line; detail() is the
///         JSON path
JsonValue parseJson(QByteArray const& text, QString const& fileName);

/// `$.key` and `$[index]` steps appended to a path. Keys that aren't plain words
/// are quoted.
QString jsonPathKey(QString const& path, std::string const& key);
QString jsonPathIndex(QString const& path, std::size_t index);

}
