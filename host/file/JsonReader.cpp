#include "JsonReader.h"

#include "Host/KORV_Exception.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

/// Also the two that only end lines.
bool isControl(QChar c)
{
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

}

JsonCursor::JsonCursor(JsonValue const& value, QString const& fileName)
    : m_value(&value), m_fileName(fileName), m_path(QStringLiteral("$"))
{
}

JsonCursor::JsonCursor(JsonValue const& value, JsonCursor const& parent, std::string const* key, std::size_t index)
    : m_value(&value),
      m_fileName(parent.m_fileName),
      m_path(key ? jsonPathKey(parent.m_path, *key) : jsonPathIndex(parent.m_path, index))
{
}

JsonValue const& JsonCursor::value() const
{
    return *m_value;
}

QString JsonCursor::path() const
{
    return m_path;
}

void JsonCursor::fail(QString const& cause) const
{
    throw KORV_BadFile(__FILE__, __LINE__, QStringLiteral("%1: %2: %3").arg(m_fileName, m_path, cause), m_path);
}

void JsonCursor::wrongType(char const* expected) const
{
    fail(QStringLiteral("expected %1, found %2").arg(QLatin1String(expected), QLatin1String(m_value->kindName())));
}

QString JsonCursor::string() const
{
    if (m_value->kind != JsonValue::String)
    {
        wrongType("a string");
    }
    QString const text = QString::fromStdString(m_value->string);
    // Every text here is a name, a path or a word. Those that end a line would make records of
    // their own in what is exported, and a terminal would obey the others.
    auto const control = std::find_if(text.begin(), text.end(), isControl);
    if (control != text.end())
    {
        fail(QStringLiteral("holds the control character U+%1; names and paths must not")
                 .arg(QString::number(control->unicode(), 16).toUpper().rightJustified(4, QLatin1Char('0'))));
    }
    return text;
}

bool JsonCursor::boolean() const
{
    if (m_value->kind != JsonValue::Bool)
    {
        wrongType("true or false");
    }
    return m_value->boolean;
}

double JsonCursor::number(double least, double most) const
{
    if (m_value->kind != JsonValue::Number)
    {
        wrongType("a number");
    }
    double const number = m_value->number;
    if (!(number >= least && number <= most))
    {
        fail(QStringLiteral("%1 is out of range; expected %2 to %3")
                 .arg(QString::number(number), QString::number(least), QString::number(most)));
    }
    return number;
}

int JsonCursor::integer(int least, int most) const
{
    double const value = number(least, most);
    if (value != std::floor(value))
    {
        fail(QStringLiteral("%1 is not a whole number").arg(value));
    }
    return static_cast<int>(value);
}

std::vector<JsonCursor> JsonCursor::elements() const
{
    if (m_value->kind != JsonValue::Array && m_value->kind != JsonValue::Numbers)
    {
        wrongType("an array");
    }
    if (!m_value->numbers.empty())
    {
        fail(QStringLiteral("expected an array of objects or strings, found numbers"));
    }
    std::vector<JsonCursor> cursors;
    cursors.reserve(m_value->children.size());
    for (std::size_t i = 0; i < m_value->children.size(); ++i)
    {
        cursors.push_back(JsonCursor(m_value->children[i], *this, nullptr, i));
    }
    return cursors;
}

std::vector<double> const& JsonCursor::numbers() const
{
    if (m_value->kind == JsonValue::Array)
    {
        auto const odd = std::find_if(m_value->children.begin(), m_value->children.end(),
                                      [](JsonValue const& child) { return child.kind != JsonValue::Number; });
        auto const index = static_cast<std::size_t>(odd - m_value->children.begin());
        JsonCursor(*odd, *this, nullptr, index).wrongType("a number");
    }
    if (m_value->kind != JsonValue::Numbers)
    {
        wrongType("an array of numbers");
    }
    return m_value->numbers;
}

std::vector<double> const& JsonCursor::numbers(std::size_t count) const
{
    std::vector<double> const& found = numbers();
    if (found.size() != count)
    {
        fail(QStringLiteral("expected %1 numbers, found %2").arg(count).arg(found.size()));
    }
    return found;
}

std::vector<int> JsonCursor::integers(int least, int most) const
{
    return wholeNumbers(least, most, false);
}

std::vector<int> JsonCursor::ascendingIntegers(int least, int most) const
{
    return wholeNumbers(least, most, true);
}

std::vector<int> JsonCursor::wholeNumbers(int least, int most, bool ascending) const
{
    std::vector<int> whole;
    std::vector<double> const& found = numbers();
    whole.reserve(found.size());
    for (std::size_t i = 0; i < found.size(); ++i)
    {
        bool const isInOrder = !ascending || whole.empty() || found[i] > whole.back();
        if (!isInOrder || found[i] != std::floor(found[i]) || found[i] < least || found[i] > most)
        {
            fail(QStringLiteral("element %1 is %2; expected whole numbers from %3 to %4%5")
                     .arg(QString::number(i), QString::number(found[i]), QString::number(least), QString::number(most),
                          ascending ? QStringLiteral(" that ascend") : QString()));
        }
        whole.push_back(static_cast<int>(found[i]));
    }
    return whole;
}

JsonObject::JsonObject(JsonCursor const& cursor, std::initializer_list<char const*> keys) : m_cursor(cursor)
{
    if (cursor.value().kind != JsonValue::Object)
    {
        cursor.wrongType("an object");
    }
    for (std::string const& key : cursor.value().keys)
    {
        if (std::find(keys.begin(), keys.end(), key) == keys.end())
        {
            QStringList known;
            for (char const* name : keys)
            {
                known.append(QLatin1String(name));
            }
            QString const path = jsonPathKey(cursor.path(), key);
            throw KORV_BadFile(__FILE__, __LINE__,
                               QStringLiteral("%1: %2: unknown key; the keys here are %3")
                                   .arg(cursor.m_fileName, path, known.join(QStringLiteral(", "))),
                               path);
        }
    }
}

JsonCursor const& JsonObject::cursor() const
{
    return m_cursor;
}

std::optional<JsonCursor> JsonObject::optional(char const* key) const
{
    std::vector<std::string> const& keys = m_cursor.value().keys;
    auto const found = std::find(keys.begin(), keys.end(), key);
    if (found == keys.end())
    {
        return std::nullopt;
    }
    auto const index = static_cast<std::size_t>(found - keys.begin());
    return JsonCursor(m_cursor.value().children[index], m_cursor, &*found, index);
}

JsonCursor JsonObject::required(char const* key) const
{
    std::optional<JsonCursor> const found = optional(key);
    if (!found)
    {
        m_cursor.fail(QStringLiteral("the key \"%1\" is missing").arg(QLatin1String(key)));
    }
    return *found;
}

QString JsonObject::string(char const* key, QString const& absent) const
{
    std::optional<JsonCursor> const found = optional(key);
    return found ? found->string() : absent;
}

bool JsonObject::boolean(char const* key, bool absent) const
{
    std::optional<JsonCursor> const found = optional(key);
    return found ? found->boolean() : absent;
}

double JsonObject::number(char const* key, double absent, double least, double most) const
{
    std::optional<JsonCursor> const found = optional(key);
    return found ? found->number(least, most) : absent;
}

int JsonObject::integer(char const* key, int absent, int least, int most) const
{
    std::optional<JsonCursor> const found = optional(key);
    return found ? found->integer(least, most) : absent;
}

std::optional<int> JsonObject::optionalInteger(char const* key, int least, int most) const
{
    std::optional<JsonCursor> const found = optional(key);
    return found ? std::optional<int>(found->integer(least, most)) : std::nullopt;
}

std::vector<JsonCursor> JsonObject::elements(char const* key) const
{
    std::optional<JsonCursor> const found = optional(key);
    return found ? found->elements() : std::vector<JsonCursor>();
}

}
