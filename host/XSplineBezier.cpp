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

/// What becomes of two vectors while both go from one value to another, linearly: the
/// Bernstein coefficients of their product, which is quadratic.
template <typename Product>
std::array<double, 3> products(Pos2 const& u0, Pos2 const& u1, Pos2 const& v0, Pos2 const& v1, Product const& product)
{
    return {product(u0, v0), (product(u0, v1) + product(u1, v0)) / 2, product(u1, v1)};
}

double largest(std::array<double, 3> const& coefficients)
{
    return std::max({std::fabs(coefficients[0]), std::fabs(coefficients[1]), std::fabs(coefficients[2])});
}

/// Spans that go from one to another, and the X-splines that they stand for, against
/// the chord of the span. Lengths that say how far something is from the chord, or along
/// it, are times the length of the chord.
class GoingSpan
{
public:
    GoingSpan(Span const& from, Span const& to)
        : m_from(from),
          m_to(to),
          m_fromChord(minus(from.bezier[3], from.bezier[0])),
          m_toChord(minus(to.bezier[3], to.bezier[0]))
    {
        Pos2 const step = minus(m_toChord, m_fromChord);
        double const square = dot(step, step);
        double const when = square > 0 ? std::clamp(-dot(m_fromChord, step) / square, 0.0, 1.0) : 0;
        m_shortest = length(between(m_fromChord, m_toChord, when));
        double const size = std::max(length(m_fromChord), length(m_toChord));
        m_tiny = 1e-10 * size * size;
    }

    /// The largest distance at any moment of the X-spline from the span.
    double distance() const
    {
        double any = 0;
        double aside = 0;
        for (std::size_t piece = 0; piece < m_from.pieces; ++piece)
        {
            Difference const& from = m_from.differences[piece];
            Difference const& to = m_to.differences[piece];
            for (std::size_t i = 0; i < from.coefficients.size(); ++i)
            {
                any = std::max({any, length(from.coefficients[i]), length(to.coefficients[i])});
                aside = std::max(aside, largest(across(from.coefficients[i], to.coefficients[i])));
            }
        }
        double const beside = aside / m_shortest + steepest() * any;
        return isBeside() && beside < any ? beside : any;
    }

private:
    std::array<double, 3> across(Pos2 const& from, Pos2 const& to) const
    {
        return products(from, to, m_fromChord, m_toChord,
                        [](Pos2 const& u, Pos2 const& v) { return dot(turned(v), u); });
    }

    std::array<double, 3> along(Pos2 const& from, Pos2 const& to) const
    {
        return products(from, to, m_fromChord, m_toChord, dot);
    }

    bool isForwards(Pos2 const& from, Pos2 const& to) const
    {
        std::array<double, 3> const ahead = along(from, to);
        return std::min({ahead[0], ahead[1], ahead[2]}) >= -m_tiny;
    }

    // Whether the X-spline stays beside the span from end to end.
    bool isBeside() const
    {
        for (std::size_t piece = 0; piece < m_from.pieces; ++piece)
        {
            for (std::size_t i = 0; i < 6; ++i)
            {
                if (!isForwards(m_from.differences[piece].fromStart[i], m_to.differences[piece].fromStart[i]) ||
                    !isForwards(m_from.differences[piece].toEnd[i], m_to.differences[piece].toEnd[i]))
                {
                    return false;
                }
            }
        }
        return true;
    }

    // The steepest slope of the span against its chord; unbounded where it turns back.
    // What two sums of positive numbers stand to each other is at most what the
    // worst of their terms do.
    double steepest() const
    {
        double slope = 0;
        for (std::size_t i = 0; i < 3; ++i)
        {
            Pos2 const from = minus(m_from.bezier[i + 1], m_from.bezier[i]);
            Pos2 const to = minus(m_to.bezier[i + 1], m_to.bezier[i]);
            std::array<double, 3> const aside = across(from, to);
            std::array<double, 3> const ahead = along(from, to);
            for (std::size_t j = 0; j < 3; ++j)
            {
                if (std::fabs(aside[j]) > m_tiny || std::fabs(ahead[j]) > m_tiny)
                {
                    slope = std::max(slope, ahead[j] > 0 ? std::fabs(aside[j]) / ahead[j] : UNBOUNDED);
                }
            }
        }
        return slope;
    }

    Span const& m_from;
    Span const& m_to;
    Pos2 m_fromChord;
    Pos2 m_toChord;
    double m_shortest;
    double m_tiny;
};

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
                    GoingSpan(spans.at(key, span), spans.at(std::min(key + 1, m_keys.size() - 1), span)).distance());
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
