#include "XSpline.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

constexpr std::size_t STRIDE = 3;

// f, g and h of the paper. f rises from 0 to 1 with the second derivative -2p there; g
// and h are what makes a curve that goes through its point.
Quintic blendF(double p)
{
    return {0, 0, 0, 10 - p, 2 * p - 15, 6 - p};
}

Quintic blendG(double q)
{
    return {0, q, 2 * q, 8 - 12 * q, 14 * q - 11, 4 - 5 * q};
}

Quintic blendH(double q)
{
    return {0, q, 2 * q, 0, -2 * q, -q};
}

// What the weight of the point at the start of a segment makes of the functions of the
// points before and after it. With s above 0 the one before ends at t = s, and the
// one after set in at t = -s.
void blendStart(double s, bool beforeReaches, Quintic& before, Quintic& after)
{
    if (s < 0)
    {
        before = composed(blendH(-s / 2), 0, -1);
        after = blendG(-s / 2);
        return;
    }
    double const wide = 1 + s;
    Quintic const f = blendF(2 * wide * wide);
    before = beforeReaches ? composed(f, s / wide, -1 / wide) : Quintic{};
    after = composed(f, s / wide, 1 / wide);
}

Quintic mirrored(Quintic const& p)
{
    return composed(p, 1, -1);
}

double valueAt(Quintic const& p, double t)
{
    double value = 0;
    for (std::size_t i = 6; i-- > 0;)
    {
        value = value * t + p[i];
    }
    return value;
}

double slopeAt(Quintic const& p, double t)
{
    double value = 0;
    for (std::size_t i = 5; i > 0; --i)
    {
        value = value * t + static_cast<double>(i) * p[i];
    }
    return value;
}

}

// Horner's rule on polynomials.
Quintic composed(Quintic const& p, double offset, double factor)
{
    Quintic result{};
    for (std::size_t i = 6; i-- > 0;)
    {
        for (std::size_t power = 5; power > 0; --power)
        {
            result[power] = offset * result[power] + factor * result[power - 1];
        }
        result[0] = offset * result[0] + p[i];
    }
    return result;
}

Blend blendAt(double startWeight, double endWeight, double t)
{
    Blend blend;
    blendStart(startWeight, t < startWeight, blend[0], blend[2]);
    Quintic before;
    Quintic after;
    blendStart(endWeight, 1 - t < endWeight, before, after);
    blend[3] = mirrored(before);
    blend[1] = mirrored(after);
    return blend;
}

PlaceOnSegment placeAt(double startWeight, double endWeight, double t)
{
    Blend const blend = blendAt(startWeight, endWeight, t);
    PlaceOnSegment at;
    double sum = 0;
    double sumSlope = 0;
    for (std::size_t i = 0; i < 4; ++i)
    {
        at.place[i] = valueAt(blend[i], t);
        at.speed[i] = slopeAt(blend[i], t);
        sum += at.place[i];
        sumSlope += at.speed[i];
    }
    for (std::size_t i = 0; i < 4; ++i)
    {
        at.place[i] /= sum;
        at.speed[i] = (at.speed[i] - sumSlope * at.place[i]) / sum;
    }
    return at;
}

std::size_t segmentCount(std::size_t pointCount, bool closed)
{
    return closed ? pointCount : pointCount - 1;
}

XSplineSegment segmentAt(std::vector<double> const& points, bool closed, std::size_t index)
{
    std::size_t const count = points.size() / STRIDE;
    std::size_t const last = count - 1;
    auto const point = [&](std::size_t i) { return TXI::Pos2{points[i * STRIDE], points[i * STRIDE + 1]}; };
    auto const weight = [&](std::size_t i) { return points[i * STRIDE + 2]; };
    if (closed)
    {
        std::size_t const next = (index + 1) % count;
        return {{point((index + last) % count), point(index), point(next), point((index + 2) % count)},
                weight(index),
                weight(next)};
    }
    return {{point(index == 0 ? 0 : index - 1), point(index), point(index + 1), point(std::min(index + 2, last))},
            index == 0 ? 0 : weight(index),
            index + 1 == last ? 0 : weight(index + 1)};
}

}
