#include "ProjectWriting.h"

namespace MarloHost
{

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

void writeFrames(JsonText& json, std::vector<int> const& frames)
{
    bool const isRun = !frames.empty() && frames.back() - frames.front() == static_cast<int>(frames.size()) - 1;
    if (isRun)
    {
        json.number("firstFrame", frames.front());
    }
    else
    {
        json.numbers("frames", frames, 20);
    }
}

}
