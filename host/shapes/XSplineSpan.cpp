#include "XSplineSpan.h"

#include "plane/PlaneVector.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

using TXI::Pos2;

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

using OneShare = std::array<double, 4>;

double blossom(OneShare const& c, double r, double s, double t)
{
    auto const mix = [](double a, double b, double along) { return a + along * (b - a); };
    double const a = mix(mix(c[0], c[1], r), mix(c[1], c[2], r), s);
    double const b = mix(mix(c[1], c[2], r), mix(c[2], c[3], r), s);
    return mix(a, b, t);
}

/// The cubic between two of its parameters.
OneShare part(OneShare const& c, double from, double to)
{
    return {blossom(c, from, from, from), blossom(c, from, from, to), blossom(c, from, to, to), blossom(c, to, to, to)};
}

/// The share that one of the points has in the four control points.
OneShare shareOf(std::array<Shares, 4> const& bezier, std::size_t point)
{
    return {bezier[0][point], bezier[1][point], bezier[2][point], bezier[3][point]};
}

/// A piece of a span, in parameters of the segment.
struct Piece
{
    double from;
    double to;
};

/// @param whole the span, from `span.from` to `span.to`
SpanDifference<Shares> differenceOf(Blend const& blend, Piece const& span, Piece const& piece,
                                    std::array<Shares, 4> const& whole)
{
    std::array<Quintic, 4> numerators;
    Quintic denominator{};
    for (std::size_t point = 0; point < 4; ++point)
    {
        numerators[point] = bernstein(blend[point], piece.from, piece.to);
        std::transform(denominator.begin(), denominator.end(), numerators[point].begin(), denominator.begin(),
                       std::plus<>());
    }
    double const least = *std::min_element(denominator.begin(), denominator.end());
    double const size = span.to - span.from;
    SpanDifference<Shares> difference{};
    difference.isKnown = least > 0;
    for (std::size_t point = 0; point < 4; ++point)
    {
        OneShare const share = shareOf(whole, point);
        OneShare const here = part(share, (piece.from - span.from) / size, (piece.to - span.from) / size);
        Quintic const& numerator = numerators[point];
        for (std::size_t i = 0; i < 6; ++i)
        {
            for (std::size_t j = 0; j < 4; ++j)
            {
                difference.coefficients[i + j][point] += BINOMIAL_5[i] * BINOMIAL_3[j] / BINOMIAL_8[i + j] *
                                                         (numerator[i] - denominator[i] * here[j]) / least;
            }
            difference.fromStart[i][point] = (numerator[i] - denominator[i] * share[0]) / least;
            difference.toEnd[i][point] = (denominator[i] * share[3] - numerator[i]) / least;
        }
    }
    return difference;
}

Shares handleTip(Shares const& vertex, Shares const& speed, double factor)
{
    Shares tip;
    for (std::size_t point = 0; point < 4; ++point)
    {
        tip[point] = vertex[point] + factor * speed[point];
    }
    return tip;
}

Pos2 blended(Shares const& shares, std::array<Pos2, 4> const& points)
{
    return {shares[0] * points[0].x + shares[1] * points[1].x + shares[2] * points[2].x + shares[3] * points[3].x,
            shares[0] * points[0].y + shares[1] * points[1].y + shares[2] * points[2].y + shares[3] * points[3].y};
}

template <std::size_t N>
void blend(std::array<Shares, N> const& rules, std::array<Pos2, 4> const& points, std::array<Pos2, N>& values)
{
    std::transform(rules.begin(), rules.end(), values.begin(),
                   [&](Shares const& shares) { return blended(shares, points); });
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
            SpanDifference<Pos2> const& from = m_from.differences[piece];
            SpanDifference<Pos2> const& to = m_to.differences[piece];
            if (!from.isKnown)
            {
                return UNBOUNDED;
            }
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

}

SpanRule makeSpanRule(double startWeight, double endWeight, double from, double to)
{
    PlaceOnSegment const start = placeAt(startWeight, endWeight, from);
    PlaceOnSegment const end = placeAt(startWeight, endWeight, to);
    double const third = (to - from) / 3;
    // An X-spline stops in its corners.
    bool const startsInCorner = from == 0 && startWeight == 0;
    bool const endsInCorner = to == 1 && endWeight == 0;
    SpanRule rule{};
    rule.bezier = {start.place, handleTip(start.place, start.speed, startsInCorner ? 0 : third),
                   handleTip(end.place, end.speed, endsInCorner ? 0 : -third), end.place};

    std::array<double, 4> limits{from, std::clamp(startWeight, from, to), std::clamp(1 - endWeight, from, to), to};
    std::sort(limits.begin(), limits.end());
    for (std::size_t i = 0; i < 3; ++i)
    {
        if (limits[i] < limits[i + 1])
        {
            Piece const piece{limits[i], limits[i + 1]};
            Blend const blend = blendAt(startWeight, endWeight, (piece.from + piece.to) / 2);
            rule.differences[rule.pieces++] = differenceOf(blend, {from, to}, piece, rule.bezier);
        }
    }
    return rule;
}

Span makeSpan(SpanRule const& rule, std::array<Pos2, 4> const& points)
{
    Span span;
    span.pieces = rule.pieces;
    blend(rule.bezier, points, span.bezier);
    for (std::size_t piece = 0; piece < rule.pieces; ++piece)
    {
        span.differences[piece].isKnown = rule.differences[piece].isKnown;
        blend(rule.differences[piece].coefficients, points, span.differences[piece].coefficients);
        blend(rule.differences[piece].fromStart, points, span.differences[piece].fromStart);
        blend(rule.differences[piece].toEnd, points, span.differences[piece].toEnd);
    }
    return span;
}

double distanceInPlane(Span const& from, Span const& to)
{
    return GoingSpan(from, to).distance();
}

}
