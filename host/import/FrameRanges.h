#pragma once

#include <utility>
#include <vector>

namespace MarloHost
{

/// The frames from `first` to `last` that aren't in an ascending list, as ranges with both
/// ends included.
/// @param frameOf gives the frame of an element
template <typename List, typename FrameOf>
std::vector<std::pair<int, int>> missingRanges(List const& list, int first, int last, FrameOf const& frameOf)
{
    std::vector<std::pair<int, int>> ranges;
    int next = first;
    for (auto const& element : list)
    {
        int const frame = frameOf(element);
        if (frame > next)
        {
            ranges.emplace_back(next, frame - 1);
        }
        next = frame + 1;
    }
    if (next <= last)
    {
        ranges.emplace_back(next, last);
    }
    return ranges;
}

}
