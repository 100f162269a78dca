#include "JsonReader.h"

#include "JsonText.h"

#include <QStringList>

#include <algorithm>
#include <cmath>

namespace MarloHost
{

JsonCursor::JsonCursor(JsonTree& tree) : JsonCursor(tree, 0)
{
}

JsonCursor::JsonCursor(JsonTree& tree, std::size_t index) : m_tree(&tree), m_index(index)
{
}

JsonNode JsonCursor::node() const
{
    return m_tree->node(m_index);
}

JsonNode::Kind JsonCursor::kind() const
{
    return node().kind;
}

QString JsonCursor::path() const
{
    return m_tree->path(m_index);
}

void JsonCursor::fail(QString const& cause) const
{
    m_tree->fail(path(), cause);
}

void JsonCursor::wrongType(char const* expected) const
{
    fail(QStringLiteral("expected %1, found %2").arg(QLatin1String(expected), QLatin1String(node().kindName())));
}

QString JsonCursor::string() const
{
    if (kind() != JsonNode::String)
    {
        wrongType("a string");
    }
    std::string_view const bytes = m_tree->text(m_index);
    QString const text = QString::fromUtf8(bytes.data(), static_cast<int>(bytes.size()));
    QString const fault = controlCharacterFault(text);
    if (!fault.isEmpty())
    {
        fail(fault);
    }
    return text;
}

bool JsonCursor::boolean() const
{
    if (kind() != JsonNode::Bool)
    {
        wrongType("true or false");
    }
    return node().count == 1;
}

double JsonCursor::number(double least, double most) const
{
    if (kind() != JsonNode::Number)
    {
        wrongType("a number");
    }
    double const number = node().payload.number;
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

JsonElements JsonCursor::elements() const
{
    if (kind() != JsonNode::Array && kind() != JsonNode::Numbers)
    {
        wrongType("an array");
    }
    if (kind() == JsonNode::Numbers && node().count > 0)
    {
        fail(QStringLiteral("expected an array of objects or strings, found numbers"));
    }
    return kind() == JsonNode::Array ? JsonElements(*m_tree, m_index) : JsonElements(*m_tree);
}

std::size_t JsonCursor::numberCount() const
{
    if (kind() == JsonNode::Array)
    {
        for (JsonCursor const& element : elements())
        {
            if (element.kind() != JsonNode::Number)
            {
                element.wrongType("a number");
            }
        }
    }
    if (kind() != JsonNode::Numbers)
    {
        wrongType("an array of numbers");
    }
    return node().count;
}

std::vector<double> JsonCursor::takeNumbers() const
{
    numberCount();
    return m_tree->takeNumbers(m_index);
}

void JsonCursor::expectNumbers(std::size_t count) const
{
    if (numberCount() != count)
    {
        fail(QStringLiteral("expected %1 numbers, found %2").arg(count).arg(numberCount()));
    }
}

std::vector<double> JsonCursor::takeNumbers(std::size_t count) const
{
    expectNumbers(count);
    return takeNumbers();
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
    std::vector<double> const found = takeNumbers();
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

JsonElements::JsonElements(JsonTree& tree) : m_begin(tree), m_end(tree), m_size(0)
{
}

JsonElements::JsonElements(JsonTree& tree, std::size_t array)
    : m_begin(tree, array + 1), m_end(tree, tree.behind(array)), m_size(tree.node(array).count)
{
}

JsonElements::Iterator JsonElements::begin() const
{
    return Iterator(m_begin);
}

JsonElements::Iterator JsonElements::end() const
{
    return Iterator(m_end);
}

std::size_t JsonElements::size() const
{
    return m_size;
}

JsonObject::JsonObject(JsonCursor const& cursor, std::initializer_list<char const*> keys) : m_cursor(cursor)
{
    if (cursor.kind() != JsonNode::Object)
    {
        cursor.wrongType("an object");
    }
    JsonTree const& tree = *cursor.m_tree;
    for (std::size_t key = cursor.m_index + 1; key < tree.behind(cursor.m_index); key = tree.behind(key + 1))
    {
        if (std::find(keys.begin(), keys.end(), tree.text(key)) == keys.end())
        {
            QStringList known;
            for (char const* name : keys)
            {
                known.append(QLatin1String(name));
            }
            tree.fail(jsonPathKey(cursor.path(), tree.text(key)),
                      QStringLiteral("unknown key; the keys here are %1").arg(known.join(QStringLiteral(", "))));
        }
    }
}

JsonCursor const& JsonObject::cursor() const
{
    return m_cursor;
}

std::optional<JsonCursor> JsonObject::optional(char const* key) const
{
    JsonTree& tree = *m_cursor.m_tree;
    std::size_t const end = tree.behind(m_cursor.m_index);
    for (std::size_t at = m_cursor.m_index + 1; at < end; at = tree.behind(at + 1))
    {
        if (tree.text(at) == key)
        {
            return JsonCursor(tree, at + 1);
        }
    }
    return std::nullopt;
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

JsonElements JsonObject::elements(char const* key) const
{
    std::optional<JsonCursor> const found = optional(key);
    return found ? found->elements() : JsonElements(*m_cursor.m_tree);
}

}
