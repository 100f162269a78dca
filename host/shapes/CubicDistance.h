#pragma once
// Cubics that homographies carry.

#include "plane/Homography.h"

#include <limits>

namespace MarloHost
{

/// The control points of a piece of a Bezier curve.
using Cubic = std::array<TXI::Pos2, 4>;

constexpr double UNBOUNDED = std::numeric_limits<double>::infinity();

/// A bound of how far, as it is seen, a curve is from a cubic whose control points a
/// homography carried.
///
/// @param cubic in the plane
/// @param inPlane how far the curve is from the cubic there
/// @param map from the plane to the picture
/// @return pixels; 0 where the cubic reaches past the horizon and nothing can be said
double distanceInPicture(Cubic const& cubic, double inPlane, Homography const& map);

}
