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

}
