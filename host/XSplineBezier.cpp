#include "XSplineBezier.h"

#include "CubicDistance.h"
#include "Outline.h"
#include "PlaneVector.h"
#include "XSpline.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

using TXI::Pos2;

constexpr std::size_t STRIDE = 3;

constexpr double BINOMIAL_5[] = {1, 5, 10, 10, 5, 1};
constexpr double BINOMIAL_3[] = {1, 3, 3, 1};
constexpr double BINOMIAL_8[] = {1, 8, 28, 56, 70, 56, 28, 8, 1};

/// The Bernstein coefficients of p over [from, to].
Quintic bernstein(Quintic const& p, double from, double to)
{
    Quintic const local = composed(p, from, to - from);
    // The coefficient j is the sum over i <= j of C(j, i) / C(5, i) times the power i:
    // differences of Pascal's triangle, row by row.
    Quintic c;
    for (std::size_t i = 0; i < 6; ++i)
    {
        c[i] = local[i] / BINOMIAL_5[i];
    }
    for (std::size_t round = 1; round < 6; ++round)
    {
        for (std::size_t i = 5; i >= round; --i)
        {
            c[i] += c[i - 1];
        }
    }
    return c;
}

Pos2 blossom(Cubic const& c, double r, double s, double t)
{
    Pos2 const a = between(between(c[0], c[1], r), between(c[1], c[2], r), s);
    Pos2 const b = between(between(c[1], c[2], r), between(c[2], c[3], r), s);
    return between(a, b, t);
}

Cubic part(Cubic const& c, double from, double to)
{
    return {blossom(c, from, from, from), blossom(c, from, from, to), blossom(c, from, to, to), blossom(c, to, to, to)};
}

/// How a piece of an X-spline, without a place in it where a blending function sets in
/// or ends, differs from a piece of a Bezier curve at the same parameter.
struct Difference
{
    /// Bernstein coefficients of N - D B, over the least one of D.
    std::array<Pos2, 9> coefficients;

    /// Those of N - D a, and of D b - N, over the same; a and b are the ends of B.
    std::array<Pos2, 6> fromStart;
    std::array<Pos2, 6> toEnd;
};

struct Span
{
    Cubic bezier;

    /// Up to three pieces, as two of the blending functions may set in or end in it.
    std::array<Difference, 3> differences;
    std::size_t pieces = 0;
};

Difference differenceOf(XSplineSegment const& segment, double from, double to, Cubic const& whole, Cubic const& piece)
{
    Blend const blend = blendAt(segment, (from + to) / 2);
    std::array<Pos2, 6> numerator{};
    Quintic denominator{};
    for (std::size_t i = 0; i < 4; ++i)
    {
        Quintic const coefficients = bernstein(blend[i], from, to);
        for (std::size_t j = 0; j < 6; ++j)
        {
            numerator[j] = plus(numerator[j], times(coefficients[j], segment.points[i]));
            denominator[j] += coefficients[j];
        }
    }
    double const least = *std::min_element(denominator.begin(), denominator.end());
    Difference difference{};
    if (!(least > 0))
    {
        difference.coefficients.fill({UNBOUNDED, UNBOUNDED});
        difference.fromStart.fill({-UNBOUNDED, -UNBOUNDED});
        return difference;
    }
    double const factor = 1 / least;
    for (std::size_t i = 0; i < 6; ++i)
    {
        for (std::size_t j = 0; j < 4; ++j)
        {
            double const share = BINOMIAL_5[i] * BINOMIAL_3[j] / BINOMIAL_8[i + j] * factor;
            Pos2& sum = difference.coefficients[i + j];
            sum = plus(sum, times(share, minus(numerator[i], times(denominator[i], piece[j]))));
        }
        difference.fromStart[i] = times(factor, minus(numerator[i], times(denominator[i], whole[0])));
        difference.toEnd[i] = times(factor, minus(times(denominator[i], whole[3]), numerator[i]));
    }
    return difference;
}

Span makeSpan(XSplineSegment const& segment, double from, double to)
{
    PointAndSpeed const start = pointAndSpeedAt(segment, from);
    PointAndSpeed const end = pointAndSpeedAt(segment, to);
    double const third = (to - from) / 3;
    // An X-spline stops in its corners.
    bool const startsInCorner = from == 0 && segment.startWeight == 0;
    bool const endsInCorner = to == 1 && segment.endWeight == 0;
    Span span;
    span.bezier = {start.point, startsInCorner ? start.point : plus(start.point, times(third, start.speed)),
                   endsInCorner ? end.point : minus(end.point, times(third, end.speed)), end.point};

    std::array<double, 4> limits{from, std::clamp(segment.startWeight, from, to),
                                 std::clamp(1 - segment.endWeight, from, to), to};
    std::sort(limits.begin(), limits.end());
    for (std::size_t i = 0; i < 3; ++i)
    {
        if (limits[i] < limits[i + 1])
        {
            Cubic const piece =
                part(span.bezier, (limits[i] - from) / (to - from), (limits[i + 1] - from) / (to - from));
            span.differences[span.pieces++] = differenceOf(segment, limits[i], limits[i + 1], span.bezier, piece);
        }
    }
    return span;
}

/// How far the differences of a span reach, in all and in two directions.
struct Reach
{
    double any = 0;
    double across = 0;
    double along = 0;

    /// Whether the X-spline stays beside the span from end to end.
    bool isBeside = true;

    void include(Span const& span, Pos2 const& direction, double tiny)
    {
        Pos2 const normal = turned(direction);
        for (std::size_t piece = 0; piece < span.pieces; ++piece)
        {
            Difference const& difference = span.differences[piece];
            for (Pos2 const& coefficient : difference.coefficients)
            {
                any = std::max(any, length(coefficient));
                across = std::max(across, std::fabs(dot(coefficient, normal)));
                along = std::max(along, std::fabs(dot(coefficient, direction)));
            }
            for (std::size_t i = 0; i < 6; ++i)
            {
                isBeside = isBeside && dot(difference.fromStart[i], direction) >= -tiny &&
                           dot(difference.toEnd[i], direction) >= -tiny;
            }
        }
    }
};

/// The distance of X-splines from spans that are linear between `a` and `b`. All that it is
/// made of is convex in the points, once both are measured against one direction.
double distanceInPlane(Span const& a, Span const& b)
{
    Pos2 const chord = plus(minus(a.bezier[3], a.bezier[0]), minus(b.bezier[3], b.bezier[0]));
    double const size = length(chord);
    Pos2 const direction = size > 0 ? times(1 / size, chord) : Pos2{1, 0};
    double const tiny = 1e-10 * size;
    Reach reach;
    reach.include(a, direction, tiny);
    reach.include(b, direction, tiny);
    double const slope = std::max(steepest(a.bezier, direction, tiny), steepest(b.bezier, direction, tiny));
    bool const graphs = reach.isBeside && slope < UNBOUNDED;
    return graphs ? std::min(reach.any, reach.across + slope * reach.along) : reach.any;
}

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

    Spans fit(Edge edge, std::size_t index, std::size_t count) const
    {
        Spans spans;
        spans.perKey = count;
        spans.all.reserve(m_keys.size() * count);
        for (ContourKeyModel const& key : m_keys)
        {
            XSplineSegment const segment = segmentAt(edgeOf(key, edge), m_closed, index);
            for (std::size_t span = 0; span < count; ++span)
            {
                spans.all.push_back(makeSpan(segment, static_cast<double>(span) / static_cast<double>(count),
                                             static_cast<double>(span + 1) / static_cast<double>(count)));
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
    std::vector<ContourKeyModel> m_result;
};

}

std::vector<ContourKeyModel> bezierOfXSpline(std::vector<ContourKeyModel> const& keys, bool closed,
                                             PlaneView const& view, double tolerance)
{
    return Converter(keys, closed, view, tolerance).convert();
}

}
