#include "ProjectReading.h"

#include <algorithm>
#include <numeric>

namespace MarloHost
{

JsonElements limitedElements(JsonObject const& object, char const* key, std::size_t most)
{
    JsonElements const elements = object.elements(key);
    if (elements.size() > most)
    {
        object.required(key).fail(QStringLiteral("%1 elements; at most %2 are read").arg(elements.size()).arg(most));
    }
    return elements;
}

QString uniqueName(JsonObject const& object, QSet<QString>& taken)
{
    JsonCursor const name = object.required("name");
    QString const text = name.string();
    if (text.isEmpty())
    {
        name.fail(QStringLiteral("a name must not be empty"));
    }
    if (taken.contains(text))
    {
        name.fail(QStringLiteral("the name \"%1\" is taken already").arg(text));
    }
    taken.insert(text);
    return text;
}

// A number, or an object of keys: { "frames": [...], "values": [...] }.
void readKeyed(JsonObject const& object, char const* key, int frameCount, double least, KeyedNumber& number,
               double most)
{
    std::optional<JsonCursor> const cursor = object.optional(key);
    if (!cursor)
    {
        return;
    }
    if (cursor->kind() != JsonNode::Object)
    {
        number.value = cursor->number(least, most);
        return;
    }
    JsonObject const keys(*cursor, {"frames", "values"});
    number.frames = keys.required("frames").ascendingIntegers(0, frameCount - 1);
    JsonCursor const values = keys.required("values");
    number.values = values.takeNumbers(number.frames.size());
    if (number.values.empty())
    {
        cursor->fail(QStringLiteral("keys without an entry; give a number instead"));
    }
    for (double const value : number.values)
    {
        if (value < least || value > most)
        {
            values.fail(QStringLiteral("%1 is out of range; expected %2 to %3").arg(value).arg(least).arg(most));
        }
    }
    number.value = number.values.front();
}

std::vector<int> readFrames(JsonObject const& object, int defaultFirst, int frameCount, std::size_t count,
                            char const* what)
{
    std::optional<JsonCursor> const frames = object.optional("frames");
    std::optional<JsonCursor> const first = object.optional("firstFrame");
    if (frames && first)
    {
        first->fail(QStringLiteral("give either \"frames\" or \"firstFrame\", not both"));
    }
    std::vector<int> numbers;
    if (frames)
    {
        numbers = frames->ascendingIntegers(0, frameCount - 1);
        if (numbers.size() != count)
        {
            frames->fail(
                QStringLiteral("%1 frames for %2 sets of %3").arg(numbers.size()).arg(count).arg(QLatin1String(what)));
        }
        return numbers;
    }
    int const start = first ? first->integer(0, frameCount - 1) : defaultFirst;
    if (count > static_cast<std::size_t>(frameCount - start))
    {
        object.required(what).fail(QStringLiteral("%1 sets from frame %2 on don't fit into the %3 frames of the clip")
                                       .arg(count)
                                       .arg(start)
                                       .arg(frameCount));
    }
    numbers.resize(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        numbers[i] = start + static_cast<int>(i);
    }
    return numbers;
}

void readFaces(JsonObject const& object, int vertexCount, std::vector<int>& counts, std::vector<int>& indices)
{
    constexpr int LEAST_VERTICES = 3;
    JsonCursor const cursor = object.required("faceIndices");
    counts = object.required("faceCounts").integers(LEAST_VERTICES, std::max(LEAST_VERTICES, vertexCount));
    indices = cursor.integers(0, vertexCount - 1);
    long long const used = std::accumulate(counts.begin(), counts.end(), 0LL);
    if (used != static_cast<long long>(indices.size()))
    {
        cursor.fail(QStringLiteral("%1 indices for faces that have %2").arg(indices.size()).arg(used));
    }
}

}
