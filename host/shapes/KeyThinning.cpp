#include "KeyThinning.h"

#include "plane/PlaneVector.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

using TXI::Pos2;

/// How far off the worst of some frames is, and its key.
struct Worst
{
    double distance = 0;
    std::size_t key = 0;
};

class Thinner
{
public:
    Thinner(std::vector<ContourKeyModel> const& keys, PlaneView const& view) : m_keys(keys), m_view(view)
    {
    }

    /// The key between two others that their interpolation is farthest from.
    Worst worstBetween(std::size_t first, std::size_t last)
    {
        Worst worst;
        for (std::size_t key = first + 1; key < last; ++key)
        {
            double const distance =
                std::max(distanceAt(key, Edge::Mask, first, last), distanceAt(key, Edge::Feather, first, last));
            if (distance > worst.distance)
            {
                worst = {distance, key};
            }
        }
        return worst;
    }

private:
    double distanceAt(std::size_t key, Edge edge, std::size_t first, std::size_t last)
    {
        int const frame = m_keys[key].frame;
        double const along =
            static_cast<double>(frame - m_keys[first].frame) / (m_keys[last].frame - m_keys[first].frame);
        std::vector<double> const& from = edgeOf(m_keys[first], edge);
        std::vector<double> const& to = edgeOf(m_keys[last], edge);
        m_between.resize(from.size());
        std::transform(from.begin(), from.end(), to.begin(), m_between.begin(),
                       [along](double a, double b) { return a + along * (b - a); });
        m_there = edgeOf(m_keys[key], edge);
        Homography const& map = m_view.maps[static_cast<std::size_t>(frame - m_view.firstFrame)];
        carryEdge(false, map, m_between);
        carryEdge(false, map, m_there);
        return farthest();
    }

    // What isn't finite asks for no key.
    double farthest() const
    {
        double largest = 0;
        for (std::size_t i = 0; i < m_there.size(); i += 6)
        {
            Pos2 const vertex{m_between[i] - m_there[i], m_between[i + 1] - m_there[i + 1]};
            Pos2 const arrives{m_between[i + 2] - m_there[i + 2], m_between[i + 3] - m_there[i + 3]};
            Pos2 const leaves{m_between[i + 4] - m_there[i + 4], m_between[i + 5] - m_there[i + 5]};
            for (Pos2 const& off : {vertex, plus(vertex, arrives), plus(vertex, leaves)})
            {
                largest = std::max(largest, length(off));
            }
        }
        return largest;
    }

    std::vector<ContourKeyModel> const& m_keys;
    PlaneView const& m_view;
    std::vector<double> m_between;
    std::vector<double> m_there;
};

}

std::vector<ContourKeyModel> thinnedKeys(std::vector<ContourKeyModel> keys, std::vector<int> const& kept,
                                         PlaneView const& view, double tolerance)
{
    std::vector<bool> stays(keys.size(), false);
    std::vector<std::pair<std::size_t, std::size_t>> spans;
    std::size_t before = 0;
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        int const frame = keys[i].frame;
        stays[i] = i == 0 || i + 1 == keys.size() || keys[i - 1].frame + 1 < frame || frame + 1 < keys[i + 1].frame ||
                   std::binary_search(kept.begin(), kept.end(), frame);
        if (stays[i])
        {
            spans.emplace_back(before, i);
            before = i;
        }
    }
    Thinner thinner(keys, view);
    while (!spans.empty())
    {
        auto const [first, last] = spans.back();
        spans.pop_back();
        Worst const worst = thinner.worstBetween(first, last);
        if (worst.distance > tolerance)
        {
            stays[worst.key] = true;
            spans.emplace_back(first, worst.key);
            spans.emplace_back(worst.key, last);
        }
    }
    std::vector<ContourKeyModel> thinned;
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        if (stays[i])
        {
            thinned.push_back(std::move(keys[i]));
        }
    }
    return thinned;
}

}
