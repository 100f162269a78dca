#pragma once

#include "Homography.h"
#include "Host/ExportEnums.h"
#include "marlohost/ProjectModel.h"

#include <optional>
#include <vector>

namespace MarloHost
{

/// The four corners, then the centre.
using PointRow = std::array<TXI::Pos2, 5>;

/// Which motion of a layer is wanted.
struct MotionChoice
{
    ZN_TRACKING_OPTION option = ZN_TRACKING_OPTION_BASIC;
    bool invert = false;

    /// Host frame that inverted and stabilized motion starts from.
    int referenceFrame = 0;

    /// Raster of the clip, whose corners stand in for the surface where the motion
    /// goes onto the footage itself.
    double pictureWidth = 0;
    double pictureHeight = 0;
};

/// The motion of a layer's surface in one view, at the frames that have tracking
/// data.
///
/// With H(f) the homography of frame f, c the surface corners and a(f) the user's
/// adjust offsets:
///  - basic: c through H(f);
///  - adjusted: H(f) c + a(f), re-solved as a homography;
///  - offset: c + a(reference frame of the surface), through H(f);
///  - stabilized: the picture's corners through H(ref) H(f)^-1;
///  - inverted: the picture's corners through M(ref) M(f)^-1, where M is the map
///    from the surface to frame f; stabilized and inverted is H(f) H(ref)^-1.
class LayerMotion
{
public:
    /// @param track must outlive this, as must the layer; it has at least one frame
    LayerMotion(LayerModel const& layer, TrackModel const& track, MotionChoice const& choice);

    /// The motion at the tracked frame at `index` as one map: of the surface, or of the
    /// picture where the motion goes onto the footage itself. Empty where it throws a
    /// corner to or past infinity. Numbers that aren't finite pass through.
    std::optional<Homography> map(std::size_t index) const;

    /// The four corners and the centre through map().
    std::optional<PointRow> row(std::size_t index) const;

    /// The homography of the tracked frame at `index`, without the user's corrections.
    Homography tracked(std::size_t index) const;

private:
    PointRow base() const;
    Homography surfaceTo(std::size_t index) const;
    bool isAdjusted() const;
    std::array<double, 8> adjustOffsets(int frame) const;

    LayerModel const& m_layer;
    TrackModel const& m_track;
    MotionChoice m_choice;
    bool m_ontoFootage;
    Quad m_corners;
    Quad m_base;
    TXI::Pos2 m_centre;

    /// From the plane as the corners describe it to the plane as it is tracked;
    /// differs from the identity in offset motion only.
    Homography m_offset;
    Homography m_reference;
};

/// Index into ascending `frames` of the one nearest to `frame`; the earlier of two
/// that are equally near. `frames` isn't empty.
std::size_t nearestFrameIndex(std::vector<int> const& frames, int frame);

}
