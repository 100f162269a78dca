#pragma once
// Where a frame lies among the keys of something.

#include <algorithm>
#include <vector>

namespace MarloHost
{

/// Two keys of a list and where between them a frame lies: 0 at the first, 1 at the second.
/// Both are the same one outside of the list.
struct KeyInterval
{
    std::size_t first = 0;
    std::size_t second = 0;
    double fraction = 0.0;
};

/// @param frames ascending; none means one value that holds
inline KeyInterval keysAround(std::vector<int> const& frames, double frame)
{
    auto const after = std::upper_bound(frames.begin(), frames.end(), frame);
    if (after == frames.begin())
    {
        return {};
    }
    std::size_t const first = static_cast<std::size_t>(after - frames.begin()) - 1;
    if (after == frames.end())
    {
        return {first, first, 0.0};
    }
    return {first, first + 1, (frame - frames[first]) / (*after - frames[first])};
}

}
