#include "JsonText.h"

namespace MarloHost
{

void writeFlag(JsonText& json, char const* key, bool value)
{
    if (value)
    {
        json.boolean(key, true);
    }
}

void writeName(JsonText& json, char const* key, QString const& name)
{
    if (!name.isEmpty())
    {
        json.string(key, name);
    }
}

void writeOptional(JsonText& json, char const* key, std::optional<int> const& value)
{
    if (value)
    {
        json.number(key, *value);
    }
}

void writeKeyed(JsonText& json, char const* key, KeyedNumber const& number, double absent)
{
    if (!number.values.empty())
    {
        json.open(key, '{');
        json.numbers("frames", number.frames, 20);
        json.numbers("values", number.values, 10);
        json.close('}');
    }
    else if (number.value != absent)
    {
        json.number(key, number.value);
    }
}

}
