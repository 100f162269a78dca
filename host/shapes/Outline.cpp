#include "Outline.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

constexpr std::size_t BEZIER_STRIDE = 6;
constexpr std::size_t XSPLINE_STRIDE = 3;

void carryVertices(Homography const& map, std::vector<double>& numbers)
{
    for (std::size_t i = 0; i + BEZIER_STRIDE <= numbers.size(); i += BEZIER_STRIDE)
    {
        double* const vertex = &numbers[i];
        TXI::Pos2 const at = map.apply({vertex[0], vertex[1]});
        for (std::size_t handle = 2; handle < BEZIER_STRIDE; handle += 2)
        {
            // A handle of no length stays one, to the last bit.
            if (vertex[handle] == 0 && vertex[handle + 1] == 0)
            {
                continue;
            }
            TXI::Pos2 const tip = map.apply({vertex[0] + vertex[handle], vertex[1] + vertex[handle + 1]});
            vertex[handle] = tip.x - at.x;
            vertex[handle + 1] = tip.y - at.y;
        }
        vertex[0] = at.x;
        vertex[1] = at.y;
    }
}

}

KeyPlace keyPlace(std::vector<ContourKeyModel> const& keys, int frame)
{
    auto const after = std::upper_bound(keys.begin(), keys.end(), frame,
                                        [](int wanted, ContourKeyModel const& key) { return wanted < key.frame; });
    auto const index = static_cast<std::size_t>(after - keys.begin());
    if (after == keys.begin() || after == keys.end())
    {
        std::size_t const held = index == 0 ? 0 : index - 1;
        return {held, held, 0};
    }
    ContourKeyModel const& before = keys[index - 1];
    return {index - 1, index,
            (static_cast<double>(frame) - before.frame) / (static_cast<double>(after->frame) - before.frame)};
}

std::vector<double> const& edgeOf(ContourKeyModel const& key, Edge edge)
{
    return edge == Edge::Mask || key.feather.empty() ? key.points : key.feather;
}

bool hasFeather(std::vector<ContourKeyModel> const& keys)
{
    return std::any_of(keys.begin(), keys.end(), [](ContourKeyModel const& key) { return !key.feather.empty(); });
}

void edgeAt(std::vector<ContourKeyModel> const& keys, Edge edge, int frame, std::vector<double>& numbers)
{
    KeyPlace const place = keyPlace(keys, frame);
    std::vector<double> const& before = edgeOf(keys[place.before], edge);
    std::vector<double> const& after = edgeOf(keys[place.after], edge);
    numbers.resize(before.size());
    std::transform(before.begin(), before.end(), after.begin(), numbers.begin(),
                   [&](double a, double b) { return place.between(a, b); });
}

void carryEdge(bool xspline, Homography const& map, std::vector<double>& numbers)
{
    if (!xspline)
    {
        carryVertices(map, numbers);
        return;
    }
    for (std::size_t i = 0; i + XSPLINE_STRIDE <= numbers.size(); i += XSPLINE_STRIDE)
    {
        TXI::Pos2 const at = map.apply({numbers[i], numbers[i + 1]});
        numbers[i] = at.x;
        numbers[i + 1] = at.y;
    }
}

}
