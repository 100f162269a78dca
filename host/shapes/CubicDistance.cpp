#include "CubicDistance.h"

#include "plane/PlaneVector.h"

#include <algorithm>

namespace MarloHost
{

namespace
{

using TXI::Pos2;

/// The larger singular value of the derivative of a homography at a point, times w
/// squared, which makes it convex over the plane.
double stretch(Homography const& h, Homography::Projected const& p)
{
    double const a = p.w * h.m[0] - p.x * h.m[6];
    double const b = p.w * h.m[1] - p.x * h.m[7];
    double const c = p.w * h.m[3] - p.y * h.m[6];
    double const d = p.w * h.m[4] - p.y * h.m[7];
    return (std::sqrt((a + d) * (a + d) + (c - b) * (c - b)) + std::sqrt((a - d) * (a - d) + (b + c) * (b + c))) / 2;
}

/// The steepest slope of a cubic against a direction of length 1; unbounded where it
/// turns back. Steps between control points of `tiny` length count as none.
double steepest(Cubic const& cubic, Pos2 const& along, double tiny)
{
    Pos2 const across = turned(along);
    double slope = 0;
    for (std::size_t i = 0; i < 3; ++i)
    {
        Pos2 const step = minus(cubic[i + 1], cubic[i]);
        double const forward = dot(step, along);
        double const aside = std::fabs(dot(step, across));
        if (std::fabs(forward) <= tiny && aside <= tiny)
        {
            continue;
        }
        slope = std::max(slope, forward > 0 ? aside / forward : UNBOUNDED);
    }
    return slope;
}

/// The distance of the rational cubic with these weights from the cubic with the same
/// points. With all weights within `off` of 1, at both ends 1, no share of a point differs
/// by more than `error` of what it is in the cubic.
double distanceOfWeights(Cubic const& seen, std::array<double, 4> const& weights)
{
    double const ratio = std::cbrt(weights[3] / weights[0]);
    double const off = std::max(std::fabs(weights[1] / (weights[0] * ratio) - 1),
                                std::fabs(weights[2] / (weights[0] * ratio * ratio) - 1));
    if (off >= 1)
    {
        return UNBOUNDED;
    }
    // The inner two points have at most three quarters of the whole.
    double const error = 1.75 * off / (1 - 0.75 * off);
    Pos2 const chord = minus(seen[3], seen[0]);
    double const size = length(chord);
    Pos2 const middle = between(seen[0], seen[3], 0.5);
    double reach = 0;
    for (Pos2 const& point : seen)
    {
        reach = std::max(reach, length(minus(point, middle)));
    }
    double const slope = size > 0 ? steepest(seen, times(1 / size, chord), 1e-10 * size) : UNBOUNDED;
    if (slope == UNBOUNDED)
    {
        return error * reach;
    }
    Pos2 const across = times(1 / size, turned(chord));
    double const thick =
        std::max(std::fabs(dot(minus(seen[1], seen[0]), across)), std::fabs(dot(minus(seen[2], seen[0]), across)));
    return error * std::min(reach, 0.75 * thick + slope * size / 2);
}

}

double distanceInPicture(Cubic const& bezier, double inPlane, Homography const& map)
{
    std::array<Homography::Projected, 4> projected;
    std::array<double, 4> weights;
    double stretched = 0;
    for (std::size_t i = 0; i < 4; ++i)
    {
        projected[i] = map.project(bezier[i]);
        weights[i] = projected[i].w;
        stretched = std::max(stretched, stretch(map, projected[i]));
    }
    double const least = *std::min_element(weights.begin(), weights.end());
    if (!(least > 0))
    {
        return 0;
    }
    double const gradient = std::sqrt(map.m[6] * map.m[6] + map.m[7] * map.m[7]);
    double const nearest = least - gradient * inPlane;
    if (!(nearest > 0))
    {
        return UNBOUNDED;
    }
    // The X-spline lies beside the hull of the four points; there the stretch is as much
    // more as its gradient says, which is the same everywhere.
    auto const& m = map.m;
    double const kx = m[0] * m[7] - m[1] * m[6];
    double const ky = m[3] * m[7] - m[4] * m[6];
    double const beside = std::sqrt(kx * kx + ky * ky) * inPlane;
    double const ofFit = inPlane * (stretched + beside) / (nearest * nearest);
    if (gradient == 0)
    {
        return ofFit;
    }
    Cubic seen;
    for (std::size_t i = 0; i < 4; ++i)
    {
        seen[i] = {projected[i].x / weights[i], projected[i].y / weights[i]};
    }
    return ofFit + distanceOfWeights(seen, weights);
}

}
