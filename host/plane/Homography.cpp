#include "Homography.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

using Corner = Korvane::TrackingExporterTypes;

double cross(TXI::Pos2 const& o, TXI::Pos2 const& a, TXI::Pos2 const& b)
{
    return (a.x - o.x) * (b.y - o.y) - (a.y - o.y) * (b.x - o.x);
}

// Unit square to quad, (0,0) to lower left, (1,0) to lower right, (0,1) to upper
// left. Heckbert, "Fundamentals of Texture Mapping and Image Warping", 1989,
// section 2.2.2.
Homography fromUnitSquare(Quad const& q)
{
    TXI::Pos2 const& p0 = q[Corner::LowerLeft];
    TXI::Pos2 const& p1 = q[Corner::LowerRight];
    TXI::Pos2 const& p2 = q[Corner::UpperRight];
    TXI::Pos2 const& p3 = q[Corner::UpperLeft];
    double const dx1 = p1.x - p2.x;
    double const dy1 = p1.y - p2.y;
    double const dx2 = p3.x - p2.x;
    double const dy2 = p3.y - p2.y;
    double const sx = p0.x - p1.x + p2.x - p3.x;
    double const sy = p0.y - p1.y + p2.y - p3.y;
    double const det = dx1 * dy2 - dx2 * dy1;
    double const g = (sx * dy2 - dx2 * sy) / det;
    double const h = (dx1 * sy - sx * dy1) / det;
    return {{p1.x - p0.x + g * p1.x, p3.x - p0.x + h * p3.x, p0.x, p1.y - p0.y + g * p1.y, p3.y - p0.y + h * p3.y, p0.y,
             g, h, 1.0}};
}

}

Homography Homography::inverse() const
{
    return {{m[4] * m[8] - m[5] * m[7], m[2] * m[7] - m[1] * m[8], m[1] * m[5] - m[2] * m[4], m[5] * m[6] - m[3] * m[8],
             m[0] * m[8] - m[2] * m[6], m[2] * m[3] - m[0] * m[5], m[3] * m[7] - m[4] * m[6], m[1] * m[6] - m[0] * m[7],
             m[0] * m[4] - m[1] * m[3]}};
}

Homography Homography::betweenQuads(Quad const& from, Quad const& to)
{
    return fromUnitSquare(to) * fromUnitSquare(from).inverse();
}

Homography operator*(Homography const& a, Homography const& b)
{
    Homography product;
    for (std::size_t row = 0; row < 3; ++row)
    {
        for (std::size_t column = 0; column < 3; ++column)
        {
            product.m[row * 3 + column] =
                a.m[row * 3] * b.m[column] + a.m[row * 3 + 1] * b.m[3 + column] + a.m[row * 3 + 2] * b.m[6 + column];
        }
    }
    return product;
}

bool isRegular(Homography const& h, double width, double height)
{
    Homography const toPixels{{width, 0, 0, 0, height, 0, 0, 0, 1}};
    Homography const toUnit{{1 / width, 0, 0, 0, 1 / height, 0, 0, 0, 1}};
    Homography unit = toUnit * h * toPixels;
    std::array<double, 9>& m = unit.m;
    double largest = 0;
    for (double const entry : m)
    {
        largest = std::max(largest, std::fabs(entry));
    }
    // Scaled before it is multiplied out: a factor on all entries means nothing.
    for (double& entry : m)
    {
        entry /= largest;
    }
    double const det =
        m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) + m[2] * (m[3] * m[7] - m[4] * m[6]);
    // A NaN, too, is not regular.
    return std::fabs(det) > 1e-12;
}

bool isConvexQuad(Quad const& quad)
{
    std::array<TXI::Pos2, 4> const outline{quad[Corner::LowerLeft], quad[Corner::LowerRight], quad[Corner::UpperRight],
                                           quad[Corner::UpperLeft]};
    int leftTurns = 0;
    for (std::size_t i = 0; i < 4; ++i)
    {
        leftTurns += cross(outline[i], outline[(i + 1) % 4], outline[(i + 2) % 4]) > 0 ? 1 : 0;
    }
    return leftTurns == 0 || leftTurns == 4;
}

bool isProperQuad(Quad const& quad)
{
    double extent = 0;
    for (TXI::Pos2 const& p : quad)
    {
        extent = std::max({extent, std::fabs(p.x - quad[0].x), std::fabs(p.y - quad[0].y)});
    }
    for (std::size_t left = 0; left < 4; ++left)
    {
        double const area = cross(quad[(left + 1) % 4], quad[(left + 2) % 4], quad[(left + 3) % 4]);
        if (!(std::fabs(area) > 1e-9 * extent * extent))
        {
            return false;
        }
    }
    return true;
}

TXI::Pos2 crossingOfDiagonals(Quad const& quad)
{
    TXI::Pos2 const& a = quad[Corner::LowerLeft];
    TXI::Pos2 const& b = quad[Corner::UpperRight];
    TXI::Pos2 const& c = quad[Corner::LowerRight];
    TXI::Pos2 const& d = quad[Corner::UpperLeft];
    double const along = ((c.x - a.x) * (d.y - c.y) - (c.y - a.y) * (d.x - c.x)) /
                         ((b.x - a.x) * (d.y - c.y) - (b.y - a.y) * (d.x - c.x));
    return {a.x + along * (b.x - a.x), a.y + along * (b.y - a.y)};
}

}
