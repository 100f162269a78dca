#include "JsonTree.h"

#include "Host/KORV_Exception.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cctype>

namespace MarloHost
{

namespace
{

/// The longest piece of a file's own text that an error repeats.
constexpr int MAX_QUOTED = 60;

QString quoted(std::string const& text)
{
    QString shown = QString::fromStdString(text);
    if (shown.size() > MAX_QUOTED)
    {
        shown = shown.left(MAX_QUOTED) + QStringLiteral("...");
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

/// Fills the tree; nlohmann's parser calls it without recursion, so that the
/// depth of a hostile text never reaches the stack.
class TreeFiller
{
public:
    explicit TreeFiller(QString const& fileName) : m_fileName(fileName)
    {
    }

    JsonValue takeRoot()
    {
        return std::move(m_root);
    }

    bool null()
    {
        place();
        return true;
    }

    bool boolean(bool value)
    {
        JsonValue& here = place();
        here.kind = JsonValue::Bool;
        here.boolean = value;
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
        JsonValue& here = place();
        here.kind = JsonValue::String;
        here.string = std::move(value);
        return true;
    }

    bool binary(nlohmann::json::binary_t&)
    {
        return false; // never in text
    }

    bool start_object(std::size_t)
    {
        open(JsonValue::Object);
        return true;
    }

    bool key(std::string& name)
    {
        JsonValue& object = *m_open.back();
        if (std::find(object.keys.begin(), object.keys.end(), name) != object.keys.end())
        {
            fail(jsonPathKey(path(false), name), QStringLiteral("the key stands here twice; remove one"));
        }
        if (object.keys.size() == MAX_JSON_KEYS)
        {
            fail(path(false), QStringLiteral("an object has more than %1 keys").arg(MAX_JSON_KEYS));
        }
        object.keys.push_back(std::move(name));
        return true;
    }

    bool end_object()
    {
        m_open.pop_back();
        return true;
    }

    bool start_array(std::size_t)
    {
        open(JsonValue::Numbers);
        return true;
    }

    bool end_array()
    {
        m_open.pop_back();
        return true;
    }

    bool parse_error(std::size_t position, std::string const&, nlohmann::json::exception const& error)
    {
        m_errorPosition = position;
        std::string const what = error.what();
        std::size_t const words = what.find("] ");
        m_error = words == std::string::npos ? what : what.substr(words + 2);
        return false;
    }

    /// Raises what parse_error was told.
    [[noreturn]] void failAtError(QByteArray const& text) const
    {
        // The parser's text starts with its own "parse error at line.., column..: ".
        std::size_t const colon = m_error.find(": ");
        std::string cause = colon == std::string::npos ? m_error : m_error.substr(colon + 2);
        QByteArray const before = text.left(static_cast<int>(std::max<std::size_t>(m_errorPosition, 1)) - 1);
        int const line = before.count('\n') + 1;
        int const column = before.size() - before.lastIndexOf('\n');
        QString shown = QString::fromStdString(cause);
        shown = shown.size() > 200 ? shown.left(200) + QStringLiteral("...") : shown;
        fail(path(true),
             QStringLiteral("line %1, column %2: %3").arg(QString::number(line), QString::number(column), shown));
    }

private:
    [[noreturn]] void fail(QString const& where, QString const& cause) const
    {
        throw KORV_BadFile(__FILE__, __LINE__, QStringLiteral("%1: %2: %3").arg(m_fileName, where, cause), where);
    }

    /// Where the text is: of the innermost open value, or (`insideIt`) of what is
    /// read in it.
    QString path(bool insideIt) const
    {
        QString text = QStringLiteral("$");
        for (JsonValue const* const value : m_open)
        {
            bool const innermost = value == m_open.back();
            if (innermost && !insideIt)
            {
                break;
            }
            if (value->kind == JsonValue::Object)
            {
                text = value->keys.empty() ? text : jsonPathKey(text, value->keys.back());
            }
            else
            {
                std::size_t const next = value->children.size() + value->numbers.size();
                text = jsonPathIndex(text, innermost ? next : next - 1);
            }
        }
        return text;
    }

    bool number(double value)
    {
        if (!m_open.empty() && m_open.back()->kind == JsonValue::Numbers)
        {
            m_open.back()->numbers.push_back(value);
            return true;
        }
        JsonValue& here = place();
        here.kind = JsonValue::Number;
        here.number = value;
        return true;
    }

    void open(JsonValue::Kind kind)
    {
        if (m_open.size() == static_cast<std::size_t>(MAX_JSON_DEPTH))
        {
            fail(path(true), QStringLiteral("nested deeper than %1 levels").arg(MAX_JSON_DEPTH));
        }
        JsonValue& here = place();
        here.kind = kind;
        m_open.push_back(&here);
    }

    // A new value at the place where the text is. Open values are the last children
    // of their parents, which don't grow while a child is open, so the pointers stay.
    JsonValue& place()
    {
        if (m_open.empty())
        {
            return m_root;
        }
        JsonValue& parent = *m_open.back();
        if (parent.kind == JsonValue::Numbers)
        {
            parent.kind = JsonValue::Array;
            for (double const number : parent.numbers)
            {
                parent.children.emplace_back();
                parent.children.back().kind = JsonValue::Number;
                parent.children.back().number = number;
            }
            std::vector<double>().swap(parent.numbers);
        }
        return parent.children.emplace_back();
    }

    QString m_fileName;
    JsonValue m_root;
    std::vector<JsonValue*> m_open;
    std::size_t m_errorPosition = 0;
    std::string m_error;
};

}

char const* JsonValue::kindName() const
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

JsonValue parseJson(QByteArray const& text, QString const& fileName)
{
    TreeFiller filler(fileName);
    if (!nlohmann::json::sax_parse(text.cbegin(), text.cend(), &filler))
    {
        filler.failAtError(text);
    }
    return filler.takeRoot();
}

QString jsonPathKey(QString const& path, std::string const& key)
{
    bool const plain = !key.empty() &&
                       std::all_of(key.begin(), key.end(), [](unsigned char c) { return std::isalnum(c) || c == '_'; });
    return plain ? path + QLatin1Char('.') + QString::fromStdString(key)
                 : path + QLatin1Char('[') + quoted(key) + QLatin1Char(']');
}

QString jsonPathIndex(QString const& path, std::size_t index)
{
    return path + QLatin1Char('[') + QString::number(index) + QLatin1Char(']');
}

}
