#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace MarloHost
{

/// The middle of the numbers, or the mean of the two in the middle. Changes their order.
/// @param numbers at least one
inline double median(std::vector<double>& numbers)
{
    auto const middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    return numbers.size() % 2 != 0 ? *middle : 0.5 * (*middle + *std::max_element(numbers.begin(), middle));
}

}
