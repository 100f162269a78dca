#pragma once

#include "Host/ExporterHelper.h"

#include <array>

namespace MarloHost
{

/// Four points by TrackingExporterTypes::SurfaceCorner: lower left, lower right,
/// upper left, upper right.
using Quad = std::array<TXI::Pos2, 4>;

/// A 3x3 projective map, row by row, acting on column vectors (x, y, 1).
struct Homography
{
    std::array<double, 9> m{1, 0, 0, 0, 1, 0, 0, 0, 1};

    /// A point before the division by its last coordinate.
    struct Projected
    {
        double x;
        double y;
        double w;
    };

    Projected project(TXI::Pos2 const& p) const
    {
        return {m[0] * p.x + m[1] * p.y + m[2], m[3] * p.x + m[4] * p.y + m[5], m[6] * p.x + m[7] * p.y + m[8]};
    }

    TXI::Pos2 apply(TXI::Pos2 const& p) const
    {
        Projected const q = project(p);
        return {q.x / q.w, q.y / q.w};
    }

    /// The adjugate: the inverse up to a factor, which a homography doesn't have.
    Homography inverse() const;

    /// The map that takes `from` to `to`, corner by corner. Singular where three
    /// corners of either lie on a line.
    static Homography betweenQuads(Quad const& from, Quad const& to);
};

Homography operator*(Homography const& a, Homography const& b);

/// Whether the map is regular over a picture of that size: the determinant in
/// coordinates 0 to 1, relative to the size of the entries, is above 1e-12.
bool isRegular(Homography const& h, double width, double height);

/// Whether no three corners lie on a line, to 1e-9 of the quad's own extent.
bool isProperQuad(Quad const& quad);

/// Whether the outline turns one way at all corners, so that the diagonals cross in
/// it; mirrored surfaces do.
bool isConvexQuad(Quad const& quad);

/// Where the diagonals cross.
TXI::Pos2 crossingOfDiagonals(Quad const& quad);

}
