#pragma once

#include "Host/ExporterHelper.h"
#include "Host/HostApi.h"
#include "marlohost/ProjectModel.h"

#include <optional>

namespace MarloHost
{

/// The lens of a clip at one frame: from where a pinhole would show a point to where
/// the lens shows it, and back.
///
/// Points are pixels of the clip's raster, y up. They become coordinates about the
/// lens centre in units of the focal length,
///
///     X = (x / width - 1/2) * aspect, Y = y / lines - 1/2,
///     q = ((X - centreX) / (focalLength * squeeze), (Y - centreY) / focalLength),
///
/// with `aspect` the width of the picture as seen divided by its height. There, with
/// r^2 = |q|^2, k the radial and p the tangential coefficients, the lens shows q at
///
///     q (1 + k1 r^2 + k2 r^4 + k3 r^6)
///       + (2 p1 qx qy + p2 (r^2 + 2 qx^2), p1 (r^2 + 2 qy^2) + 2 p2 qx qy).
///
/// D. C. Brown, "Close-Range Camera Calibration", Photogrammetric Engineering 37,
/// 1971, in the direction and order that computer vision libraries use.
class MARLO_HOST_API ClipLens
{
public:
    /// @param clip gives raster and lens; a clip without a lens changes no point
    /// @param frame host frame, may be fractional
    ClipLens(ClipModel const& clip, double frame);

    /// Where the lens shows a point that a pinhole would show at `point`.
    TXI::Pos2 distort(TXI::Pos2 const& point) const;

    /// The inverse of distort(), to 1e-9 pixels; empty for a point that the lens
    /// shows nothing at (beyond the rim where its polynomial turns back).
    std::optional<TXI::Pos2> undistort(TXI::Pos2 const& point) const;

private:
    TXI::Pos2 toLens(TXI::Pos2 const& pixel) const;
    TXI::Pos2 toPixel(TXI::Pos2 const& q) const;

    /// The lens formula and its derivatives by qx and qy.
    struct Shown
    {
        TXI::Pos2 at;
        double xx, xy, yx, yy;
    };
    Shown show(TXI::Pos2 const& q) const;

    bool m_distorts;
    double m_width;
    double m_lines;
    double m_aspect;
    double m_focalX;
    double m_focalY;
    TXI::Pos2 m_centre;
    std::array<double, 3> m_radial;
    std::array<double, 2> m_tangential;
};

/// The first host frame in which a corner of the picture lies beyond the rim where the
/// formula of the clip's lens turns back: such a lens can't have taken the picture. Keyed
/// lenses are checked at their keys. Empty for a lens, or none, that is fine.
MARLO_HOST_API std::optional<int> firstFoldedFrame(ClipModel const& clip);

/// The number at a frame.
MARLO_HOST_API double valueAt(KeyedNumber const& number, double frame);

}
