#include "marlohost/ClipLens.h"

#include "model/Keys.h"

#include <algorithm>
#include <cmath>
#include <set>

namespace MarloHost
{

double valueAt(KeyedNumber const& number, double frame)
{
    if (number.values.empty())
    {
        return number.value;
    }
    auto const [first, second, fraction] = keysAround(number.frames, frame);
    return number.values[first] + fraction * (number.values[second] - number.values[first]);
}

std::optional<int> firstFoldedFrame(ClipModel const& clip)
{
    if (!clip.lens)
    {
        return std::nullopt;
    }
    LensModel const& lens = *clip.lens;
    std::set<int> frames{0};
    for (KeyedNumber const* number : {&lens.focalLength, &lens.centreX, &lens.centreY, &lens.radial[0], &lens.radial[1],
                                      &lens.radial[2], &lens.tangential[0], &lens.tangential[1], &lens.squeeze})
    {
        frames.insert(number->frames.begin(), number->frames.end());
    }
    double const width = clip.width;
    double const lines = clip.interlaced ? clip.height / 2 : clip.height;
    for (int const frame : frames)
    {
        ClipLens const at(clip, frame);
        for (TXI::Pos2 const corner : {TXI::Pos2{0, 0}, {width, 0}, {0, lines}, {width, lines}})
        {
            if (!at.undistort(corner))
            {
                return frame;
            }
        }
    }
    return std::nullopt;
}

ClipLens::ClipLens(ClipModel const& clip, double frame)
    : m_distorts(clip.lens.has_value()),
      m_width(clip.width),
      m_lines(clip.interlaced ? clip.height / 2 : clip.height),
      m_aspect(clip.width * clip.pixelAspect / clip.height),
      m_focalX(1),
      m_focalY(1),
      m_centre{0, 0},
      m_radial{},
      m_tangential{}
{
    if (!m_distorts)
    {
        return;
    }
    LensModel const& lens = *clip.lens;
    m_focalY = valueAt(lens.focalLength, frame);
    m_focalX = m_focalY * valueAt(lens.squeeze, frame);
    m_centre = {valueAt(lens.centreX, frame), valueAt(lens.centreY, frame)};
    auto const at = [frame](KeyedNumber const& number) { return valueAt(number, frame); };
    std::transform(lens.radial.begin(), lens.radial.end(), m_radial.begin(), at);
    std::transform(lens.tangential.begin(), lens.tangential.end(), m_tangential.begin(), at);
}

TXI::Pos2 ClipLens::distort(TXI::Pos2 const& point) const
{
    return m_distorts ? toPixel(show(toLens(point)).at) : point;
}

// Newton's method from the centre outward: the start is the target itself, and a
// step that would leave the region where the formula keeps its orientation is
// halved. Within the frame of a real lens three or four steps reach 1e-12.
std::optional<TXI::Pos2> ClipLens::undistort(TXI::Pos2 const& point) const
{
    if (!m_distorts)
    {
        return point;
    }
    constexpr int MOST_STEPS = 100;
    constexpr double TOLERANCE = 1e-13;
    TXI::Pos2 const target = toLens(point);
    TXI::Pos2 q{0, 0};
    Shown shown = show(q);
    double distance = std::hypot(target.x, target.y);
    double const precise = TOLERANCE * std::max(1.0, distance);
    for (int step = 0; step < MOST_STEPS && distance > precise; ++step)
    {
        double const dx = target.x - shown.at.x;
        double const dy = target.y - shown.at.y;
        double const det = shown.xx * shown.yy - shown.xy * shown.yx;
        TXI::Pos2 const move{(shown.yy * dx - shown.xy * dy) / det, (shown.xx * dy - shown.yx * dx) / det};
        double length = 1.0;
        for (; length > 1e-6; length /= 2)
        {
            TXI::Pos2 const next{q.x + length * move.x, q.y + length * move.y};
            Shown const candidate = show(next);
            double const left = std::hypot(target.x - candidate.at.x, target.y - candidate.at.y);
            if (candidate.xx * candidate.yy - candidate.xy * candidate.yx > 0 && left < distance)
            {
                q = next;
                shown = candidate;
                distance = left;
                break;
            }
        }
        if (length <= 1e-6)
        {
            break;
        }
    }
    // Where rounding stops the walk just short of the tolerance, the point is found
    // all the same.
    if (!(distance <= 1e3 * precise))
    {
        return std::nullopt;
    }
    return toPixel(q);
}

TXI::Pos2 ClipLens::toLens(TXI::Pos2 const& pixel) const
{
    return {((pixel.x / m_width - 0.5) * m_aspect - m_centre.x) / m_focalX,
            (pixel.y / m_lines - 0.5 - m_centre.y) / m_focalY};
}

TXI::Pos2 ClipLens::toPixel(TXI::Pos2 const& q) const
{
    return {((q.x * m_focalX + m_centre.x) / m_aspect + 0.5) * m_width, (q.y * m_focalY + m_centre.y + 0.5) * m_lines};
}

ClipLens::Shown ClipLens::show(TXI::Pos2 const& q) const
{
    auto const [k1, k2, k3] = m_radial;
    auto const [p1, p2] = m_tangential;
    double const x = q.x;
    double const y = q.y;
    double const r2 = x * x + y * y;
    double const radial = 1 + r2 * (k1 + r2 * (k2 + r2 * k3));
    // d radial / d x is slope * x, likewise for y.
    double const slope = 2 * (k1 + r2 * (2 * k2 + r2 * 3 * k3));
    double const mixed = slope * x * y + 2 * (p1 * x + p2 * y);
    return {{x * radial + 2 * p1 * x * y + p2 * (r2 + 2 * x * x), y * radial + p1 * (r2 + 2 * y * y) + 2 * p2 * x * y},
            radial + slope * x * x + 2 * p1 * y + 6 * p2 * x,
            mixed,
            mixed,
            radial + slope * y * y + 6 * p1 * y + 2 * p2 * x};
}

}
