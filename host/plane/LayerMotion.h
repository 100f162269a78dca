#pragma once

#include "Homography.h"
#include "Host/ExportEnums.h"
#include "marlohost/ProjectModel.h"

#include <algorithm>
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

    /// The clip whose lens is taken away; null to leave it.
    ClipModel const* undistort = nullptr;
};

/// The points of a frame, or why there are none.
struct FrameRow
{
    std::optional<PointRow> points;

    /// Set where the lens shows nothing at one of them.
    bool leavesLens = false;
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
///
/// On the plate without its lens, the surface's points are those of frame f with the lens
/// of that frame taken away. For motion that goes onto the footage itself, M and H are the
/// maps from the surface's corners to there: the corners of the picture are those of the
/// straight plate, and no lens concerns them.
class LayerMotion
{
public:
    /// @param track must outlive this, as must the layer; it has at least one frame
    LayerMotion(LayerModel const& layer, TrackModel const& track, MotionChoice const& choice);

    /// The motion at the tracked frame at `index` as one map: of the surface, or of the
    /// picture where the motion goes onto the footage itself. Empty where it throws a
    /// corner to or past infinity. Numbers that aren't finite pass through. The lens stays
    /// on the surface.
    std::optional<Homography> map(std::size_t index) const;

    /// The four corners and the centre through map(), without the lens if it is taken away.
    FrameRow row(std::size_t index) const;

    /// The homography of the tracked frame at `index`, without the user's corrections.
    Homography tracked(std::size_t index) const;

private:
    std::optional<PointRow> baseThrough(std::optional<Homography> const& motion) const;
    std::optional<Homography> surfaceMap(std::size_t index) const;
    FrameRow straightSurface(std::size_t index) const;
    std::optional<Homography> straightMap(FrameRow const& surface) const;
    Homography onFootage(Homography const& surface) const;
    void findReference();
    std::array<double, 8> adjustOffsets(int frame) const;

    LayerModel const& m_layer;
    TrackModel const& m_track;
    MotionChoice m_choice;
    bool m_ontoFootage;
    Quad m_corners;

    /// Corners and centre of what is carried: the surface, or the picture.
    PointRow m_base;

    /// From the plane as the corners describe it to the plane as it is tracked; empty but
    /// in offset motion.
    std::optional<Homography> m_offset;

    /// M(ref), or H(ref), of motion that goes onto the footage itself.
    Homography m_reference;
};

/// Index into ascending `frames` of the one nearest to `frame`; the earlier of two
/// that are equally near. `frames` isn't empty.
std::size_t nearestFrameIndex(std::vector<int> const& frames, int frame);

/// The same among those indices for which something is true; empty when there is none.
/// Looks at no more of them than it must, the nearest first.
template <typename Predicate>
std::optional<std::size_t> nearestIndexWhere(std::vector<int> const& frames, int frame, Predicate const& isWanted)
{
    auto after = static_cast<std::size_t>(std::lower_bound(frames.begin(), frames.end(), frame) - frames.begin());
    std::size_t before = after;
    while (before > 0 || after < frames.size())
    {
        bool const takeAfter =
            before == 0 || (after < frames.size() && static_cast<long long>(frames[after]) - frame <
                                                         static_cast<long long>(frame) - frames[before - 1]);
        std::size_t const index = takeAfter ? after++ : --before;
        if (isWanted(index))
        {
            return index;
        }
    }
    return std::nullopt;
}

}
