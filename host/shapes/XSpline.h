#pragma once
// X-splines after C. Blanc and C. Schlick, "X-splines: a spline model designed for the
// end-user", SIGGRAPH 1995, with knots one apart.

#include "plane/Homography.h"

#include <vector>

namespace MarloHost
{

/// The piece of an X-spline that leads from points[1] to points[2], with their weights:
/// 0 makes a corner, up to 1 a bend that passes by the point, down to -1 one that goes
/// through it.
struct XSplineSegment
{
    std::array<TXI::Pos2, 4> points;
    double startWeight;
    double endWeight;
};

/// How many segments an X-spline of so many points has.
std::size_t segmentCount(std::size_t pointCount, bool closed);

/// A segment of the X-spline with the given points (x, y, weight each). An open one
/// begins and ends in its end points: they stand twice, and their weights count as 0.
XSplineSegment segmentAt(std::vector<double> const& points, bool closed, std::size_t index);

/// How much something has of each of the four points of a segment.
using Shares = std::array<double, 4>;

/// The place at t, 0 to 1, and its derivative by t.
struct PlaceOnSegment
{
    Shares place;
    Shares speed;
};

PlaceOnSegment placeAt(double startWeight, double endWeight, double t);

/// A polynomial of degree 5 by its powers.
using Quintic = std::array<double, 6>;

/// p(offset + factor t) as a polynomial in t.
Quintic composed(Quintic const& p, double offset, double factor);

/// The blending functions of the four points of a segment between two places where one
/// of them sets in or ends: t = startWeight and t = 1 - endWeight. Their sum is what the
/// blended points are divided by.
using Blend = std::array<Quintic, 4>;

/// @param t anywhere in the piece that the functions are wanted of
Blend blendAt(double startWeight, double endWeight, double t);

}
