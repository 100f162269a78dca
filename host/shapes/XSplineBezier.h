#pragma once

#include "Outline.h"

namespace MarloHost
{

/// How near Bezier curves keep to X-splines, in pixels of the picture.
constexpr double X_SPLINE_TOLERANCE = 0.05;

/// Replaces X-splines by Bezier curves (in the form of ContourKeyModel) that, as they are
/// seen with vertices and tips of handles carried, keep within `tolerance` pixels of the
/// X-splines at every frame, also between keys. All keys and both edges get the same
/// vertices. Between keys whose weights differ, where an X-spline isn't linear, there are
/// as many more as that takes.
///
/// Each segment becomes spans of equal length in its parameter, cubic Hermite
/// interpolants of the X-spline and so as linear in its points as the X-spline is
/// itself. Their number is the least for which the sum of two bounds is small enough:
///  - in the plane, of the distance of X(t) = N(t) / D(t) from the span B(t), by the
///    Bernstein coefficients of N - D B across the chord, plus those along it times
///    the steepest slope of B (going along B by the difference along the chord gets to
///    the point beside X), all of it quadratic between keys. This times the largest
///    stretch of the homography about the
///    span;
///  - in the picture, of the distance of the rational curve that a homography makes
///    of B from the cubic with the carried points, in the same way, once the weights at
///    both ends are made equal (which moves nothing).
/// At most 32 spans a segment: more would be asked for close to the horizon only.
/// Spans beyond it, or that aren't finite, ask for none.
std::vector<ContourKeyModel> bezierOfXSpline(std::vector<ContourKeyModel> const& keys, bool closed,
                                             PlaneView const& view, double tolerance);

/// The same for outlines that are wanted at every frame of the view: where weights change
/// from key to key there is a key at each.
std::vector<ContourKeyModel> bakedBezierOfXSpline(std::vector<ContourKeyModel> const& keys, bool closed,
                                                  PlaneView const& view, double tolerance);

}
