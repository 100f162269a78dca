#include "XSplineBezier.h"

#include "Outline.h"
#include "KeyThinning.h"
#include "plane/PlaneVector.h"
#include "XSplineSpan.h"

#include <algorithm>
#include <map>
#include <tuple>

namespace MarloHost
{

namespace
{

using TXI::Pos2;

constexpr std::size_t STRIDE = 3;

/// Turns keys around segment by segment.
class Converter
{
public:
    Converter(std::vector<ContourKeyModel> const& keys, bool closed, PlaneView const& view, double tolerance)
        : m_keys(keys), m_closed(closed), m_view(view), m_tolerance(tolerance)
    {
        if (m_view.maps.empty())
        {
            m_view.maps.emplace_back();
        }
        for (std::size_t i = 0; i < m_view.maps.size(); ++i)
        {
            m_places.push_back(keyPlace(keys, m_view.firstFrame + static_cast<int>(i)));
        }
    }

    std::vector<ContourKeyModel> convert()
    {
        bool const withFeather = hasFeather(m_keys);
        for (ContourKeyModel const& key : m_keys)
        {
            m_result.push_back({key.frame, {}, {}});
        }
        std::size_t const segments = segmentCount(m_keys.front().points.size() / STRIDE, m_closed);
        for (std::size_t segment = 0; segment < segments; ++segment)
        {
            Spans mask = fit(Edge::Mask, segment, 1);
            Spans feather = withFeather ? fit(Edge::Feather, segment, 1) : Spans{};
            while (!isCloseEnough(mask) || !isCloseEnough(feather))
            {
                std::size_t const count = std::min(MOST_SPANS, mask.perKey + 1 + mask.perKey / 4);
                mask = fit(Edge::Mask, segment, count);
                feather = withFeather ? fit(Edge::Feather, segment, count) : Spans{};
            }
            append(mask, &ContourKeyModel::points);
            append(feather, &ContourKeyModel::feather);
        }
        for (ContourKeyModel& key : m_result)
        {
            close(key.points);
            close(key.feather);
        }
        return std::move(m_result);
    }

private:
    static constexpr std::size_t MOST_SPANS = 32;

    /// The spans of a segment: those of the first key, then those of the next.
    struct Spans
    {
        std::size_t perKey = 0;
        std::vector<Span> all;

        Span const& at(std::size_t key, std::size_t span) const
        {
            return all[key * perKey + span];
        }
    };

    using Rules = std::vector<SpanRule>;

    // Contours have few different weights, and keys mostly the same.
    Rules const& rulesOf(double startWeight, double endWeight, std::size_t count)
    {
        Rules& rules = m_rules[{startWeight, endWeight, count}];
        for (std::size_t span = rules.size(); span < count; ++span)
        {
            rules.push_back(makeSpanRule(startWeight, endWeight, static_cast<double>(span) / static_cast<double>(count),
                                         static_cast<double>(span + 1) / static_cast<double>(count)));
        }
        return rules;
    }

    Spans fit(Edge edge, std::size_t index, std::size_t count)
    {
        Spans spans;
        spans.perKey = count;
        spans.all.reserve(m_keys.size() * count);
        for (ContourKeyModel const& key : m_keys)
        {
            XSplineSegment const segment = segmentAt(edgeOf(key, edge), m_closed, index);
            for (SpanRule const& rule : rulesOf(segment.startWeight, segment.endWeight, count))
            {
                spans.all.push_back(makeSpan(rule, segment.points));
            }
        }
        return spans;
    }

    bool isCloseEnough(Spans const& spans) const
    {
        if (spans.perKey >= MOST_SPANS)
        {
            return true;
        }
        for (std::size_t span = 0; span < spans.perKey; ++span)
        {
            std::vector<double> distances;
            distances.reserve(m_keys.size());
            for (std::size_t key = 0; key < m_keys.size(); ++key)
            {
                distances.push_back(
                    distanceInPlane(spans.at(key, span), spans.at(std::min(key + 1, m_keys.size() - 1), span)));
            }
            if (!isCloseEnough(spans, span, distances))
            {
                return false;
            }
        }
        return true;
    }

    // What isn't finite compares as close enough.
    bool isCloseEnough(Spans const& spans, std::size_t span, std::vector<double> const& distances) const
    {
        for (std::size_t i = 0; i < m_places.size(); ++i)
        {
            KeyPlace const& place = m_places[i];
            Cubic cubic = spans.at(place.before, span).bezier;
            Cubic const& after = spans.at(place.after, span).bezier;
            for (std::size_t point = 0; place.along > 0 && point < 4; ++point)
            {
                cubic[point] = between(cubic[point], after[point], place.along);
            }
            if (distanceInPicture(cubic, distances[place.before], m_view.maps[i]) > m_tolerance)
            {
                return false;
            }
        }
        return true;
    }

    // Vertices with the handles that leave them; those that arrive stand at the next
    // vertex, which comes with the next span.
    void append(Spans const& spans, std::vector<double> ContourKeyModel::*edge)
    {
        for (std::size_t key = 0; spans.perKey > 0 && key < m_keys.size(); ++key)
        {
            std::vector<double>& numbers = m_result[key].*edge;
            if (numbers.empty())
            {
                Pos2 const first = spans.at(key, 0).bezier[0];
                numbers.insert(numbers.end(), {first.x, first.y, 0, 0, 0, 0});
            }
            for (std::size_t span = 0; span < spans.perKey; ++span)
            {
                Cubic const& cubic = spans.at(key, span).bezier;
                Pos2 const leaves = minus(cubic[1], cubic[0]);
                Pos2 const arrives = minus(cubic[2], cubic[3]);
                numbers[numbers.size() - 2] = leaves.x;
                numbers[numbers.size() - 1] = leaves.y;
                numbers.insert(numbers.end(), {cubic[3].x, cubic[3].y, arrives.x, arrives.y, 0, 0});
            }
        }
    }

    // The last vertex of a closed curve is the first one again.
    void close(std::vector<double>& numbers) const
    {
        if (m_closed && !numbers.empty())
        {
            numbers[2] = numbers[numbers.size() - 4];
            numbers[3] = numbers[numbers.size() - 3];
            numbers.resize(numbers.size() - 6);
        }
    }

    std::vector<ContourKeyModel> const& m_keys;
    bool m_closed;
    PlaneView m_view;
    double m_tolerance;
    std::vector<KeyPlace> m_places;
    std::map<std::tuple<double, double, std::size_t>, Rules> m_rules;
    std::vector<ContourKeyModel> m_result;
};

bool weightsDiffer(std::vector<double> const& a, std::vector<double> const& b)
{
    for (std::size_t i = 2; i < a.size(); i += STRIDE)
    {
        if (a[i] != b[i])
        {
            return true;
        }
    }
    return false;
}

// The keys, and one at every frame of the view between keys whose weights differ.
std::vector<ContourKeyModel> withChangingWeights(std::vector<ContourKeyModel> const& keys, PlaneView const& view)
{
    int const lastFrame = view.firstFrame + static_cast<int>(view.maps.size()) - 1;
    bool const withFeather = hasFeather(keys);
    std::vector<ContourKeyModel> dense;
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        dense.push_back(keys[i]);
        bool const changes =
            i + 1 < keys.size() && (weightsDiffer(keys[i].points, keys[i + 1].points) ||
                                    weightsDiffer(edgeOf(keys[i], Edge::Feather), edgeOf(keys[i + 1], Edge::Feather)));
        if (!changes)
        {
            continue;
        }
        int const to = std::min(lastFrame, keys[i + 1].frame - 1);
        for (int frame = std::max(view.firstFrame, keys[i].frame + 1); frame <= to; ++frame)
        {
            ContourKeyModel key{frame, {}, {}};
            edgeAt(keys, Edge::Mask, frame, key.points);
            if (withFeather)
            {
                edgeAt(keys, Edge::Feather, frame, key.feather);
            }
            dense.push_back(std::move(key));
        }
    }
    return dense;
}

}

std::vector<ContourKeyModel> bezierOfXSpline(std::vector<ContourKeyModel> const& keys, bool closed,
                                             PlaneView const& view, double tolerance)
{
    std::vector<ContourKeyModel> const dense = withChangingWeights(keys, view);
    if (dense.size() == keys.size())
    {
        return Converter(keys, closed, view, tolerance).convert();
    }
    std::vector<int> wanted;
    wanted.reserve(keys.size());
    for (ContourKeyModel const& key : keys)
    {
        wanted.push_back(key.frame);
    }
    // One half for the curves, the other one for what lies between their keys.
    return thinnedKeys(Converter(dense, closed, view, tolerance / 2).convert(), wanted, view, tolerance / 2);
}

std::vector<ContourKeyModel> bakedBezierOfXSpline(std::vector<ContourKeyModel> const& keys, bool closed,
                                                  PlaneView const& view, double tolerance)
{
    return Converter(withChangingWeights(keys, view), closed, view, tolerance).convert();
}

}
