#include "LayerMotion.h"

#include "marlohost/ClipLens.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

Quad quadOf(std::array<double, 8> const& numbers)
{
    return {{{numbers[0], numbers[1]}, {numbers[2], numbers[3]}, {numbers[4], numbers[5]}, {numbers[6], numbers[7]}}};
}

Quad moved(Quad quad, std::array<double, 8> const& offsets)
{
    for (std::size_t corner = 0; corner < 4; ++corner)
    {
        quad[corner].x += offsets[corner * 2];
        quad[corner].y += offsets[corner * 2 + 1];
    }
    return quad;
}

// Whether all points come out on one side of infinity, and none at it. The sign
// of a homography means nothing, so either side will do. A NaN passes: it is to be
// seen in the export, not hidden behind a neighbour.
template <std::size_t N>
bool keepsInFront(Homography const& h, std::array<TXI::Pos2, N> const& points)
{
    bool positive = false;
    bool negative = false;
    for (TXI::Pos2 const& point : points)
    {
        double const w = h.project(point).w;
        positive |= w >= 0;
        negative |= w <= 0;
    }
    return !(positive && negative);
}

template <std::size_t N>
std::optional<Homography> keptInFront(Homography const& h, std::array<TXI::Pos2, N> const& points)
{
    return keepsInFront(h, points) ? std::optional<Homography>(h) : std::nullopt;
}

PointRow withCentre(Quad const& quad)
{
    return {quad[0], quad[1], quad[2], quad[3], crossingOfDiagonals(quad)};
}

Quad pictureQuad(double width, double height)
{
    return {{{0, 0}, {width, 0}, {0, height}, {width, height}}};
}

bool areZero(std::array<double, 8> const& offsets)
{
    return std::all_of(offsets.begin(), offsets.end(), [](double offset) { return offset == 0; });
}

template <std::size_t N>
std::array<TXI::Pos2, N> carried(Homography const& map, std::array<TXI::Pos2, N> points)
{
    std::transform(points.begin(), points.end(), points.begin(), [&](TXI::Pos2 const& p) { return map.apply(p); });
    return points;
}

// Takes the lens away from all points; false where one lies outside of what it shows.
// Numbers that aren't finite stay, to be seen in the export.
bool undistortRow(PointRow& row, ClipLens const& lens)
{
    for (TXI::Pos2& point : row)
    {
        if (!std::isfinite(point.x) || !std::isfinite(point.y))
        {
            continue;
        }
        std::optional<TXI::Pos2> const straight = lens.undistort(point);
        if (!straight)
        {
            return false;
        }
        point = *straight;
    }
    return true;
}

}

std::size_t nearestFrameIndex(std::vector<int> const& frames, int frame)
{
    auto const after = std::lower_bound(frames.begin(), frames.end(), frame);
    if (after == frames.begin())
    {
        return 0;
    }
    auto const before = after - 1;
    bool const takeAfter =
        after != frames.end() && static_cast<long long>(*after) - frame < static_cast<long long>(frame) - *before;
    return static_cast<std::size_t>((takeAfter ? after : before) - frames.begin());
}

LayerMotion::LayerMotion(LayerModel const& layer, TrackModel const& track, MotionChoice const& choice)
    : m_layer(layer),
      m_track(track),
      m_choice(choice),
      m_ontoFootage(choice.invert || choice.option == ZN_TRACKING_OPTION_STABILIZED),
      m_corners(quadOf(layer.corners)),
      m_base(withCentre(m_ontoFootage ? pictureQuad(choice.pictureWidth, choice.pictureHeight) : m_corners))
{
    if (choice.option == ZN_TRACKING_OPTION_OFFSET)
    {
        std::array<double, 8> const offsets = adjustOffsets(layer.referenceFrame);
        if (!areZero(offsets))
        {
            m_offset = Homography::betweenQuads(m_corners, moved(m_corners, offsets));
        }
    }
    if (m_ontoFootage)
    {
        findReference();
    }
}

// The nearest frame that has a map, of two equally near ones the earlier.
void LayerMotion::findReference()
{
    auto const isUsable = [&](std::size_t index)
    {
        std::optional<Homography> const map =
            m_choice.undistort ? straightMap(straightSurface(index)) : surfaceMap(index);
        m_reference = map.value_or(m_reference);
        return map.has_value();
    };
    nearestIndexWhere(m_track.frames, m_choice.referenceFrame, isUsable);
}

std::optional<Homography> LayerMotion::map(std::size_t index) const
{
    std::optional<Homography> const surface = surfaceMap(index);
    return surface ? keptInFront(m_ontoFootage ? onFootage(*surface) : *surface, m_base) : std::nullopt;
}

FrameRow LayerMotion::row(std::size_t index) const
{
    if (!m_choice.undistort)
    {
        return {baseThrough(map(index))};
    }
    FrameRow row = straightSurface(index);
    if (m_ontoFootage)
    {
        std::optional<Homography> const surface = straightMap(row);
        row.points = baseThrough(surface ? keptInFront(onFootage(*surface), m_base) : std::nullopt);
    }
    return row;
}

std::optional<PointRow> LayerMotion::baseThrough(std::optional<Homography> const& motion) const
{
    return motion ? std::optional<PointRow>(carried(*motion, m_base)) : std::nullopt;
}

// The surface of a frame on the plate without its lens.
FrameRow LayerMotion::straightSurface(std::size_t index) const
{
    PointRow row = withCentre(m_corners);
    std::optional<Homography> const map = surfaceMap(index);
    if (!map || !keepsInFront(*map, row))
    {
        return {};
    }
    row = carried(*map, row);
    bool const isShown = undistortRow(row, ClipLens(*m_choice.undistort, m_track.frames[index]));
    return {isShown ? std::optional<PointRow>(row) : std::nullopt, !isShown};
}

// From the surface's corners to where they are on the plate without its lens.
std::optional<Homography> LayerMotion::straightMap(FrameRow const& surface) const
{
    if (!surface.points)
    {
        return std::nullopt;
    }
    PointRow const& points = *surface.points;
    return keptInFront(Homography::betweenQuads(m_corners, {points[0], points[1], points[2], points[3]}), m_corners);
}

// Stabilizing is the inverse of the surface's motion; inverting that gives the motion
// itself. Where the surface is as in the reference frame the picture stays, exactly.
Homography LayerMotion::onFootage(Homography const& surface) const
{
    if (surface.m == m_reference.m)
    {
        return Homography();
    }
    bool const forwards = m_choice.invert && m_choice.option == ZN_TRACKING_OPTION_STABILIZED;
    return forwards ? surface * m_reference.inverse() : m_reference * surface.inverse();
}

Homography LayerMotion::tracked(std::size_t index) const
{
    Homography h;
    std::copy_n(m_track.homographies.begin() + static_cast<std::ptrdiff_t>(index * 9), 9, h.m.begin());
    return h;
}

// From the corners to where the user has them at a frame.
std::optional<Homography> LayerMotion::surfaceMap(std::size_t index) const
{
    Homography const h = tracked(index);
    if (m_choice.option == ZN_TRACKING_OPTION_OFFSET)
    {
        return m_offset ? h * *m_offset : h;
    }
    bool const isAdjusted = m_choice.option == ZN_TRACKING_OPTION_ADJUSTED;
    std::array<double, 8> const offsets = isAdjusted ? adjustOffsets(m_track.frames[index]) : std::array<double, 8>();
    if (areZero(offsets))
    {
        return h;
    }
    // The map is solved from carried corners, which hide a corner that went past infinity
    // on the way.
    return keepsInFront(h, m_corners)
               ? std::optional<Homography>(Homography::betweenQuads(m_corners, moved(carried(h, m_corners), offsets)))
               : std::nullopt;
}

std::array<double, 8> LayerMotion::adjustOffsets(int frame) const
{
    std::vector<AdjustKeyModel> const& keys = m_layer.adjust;
    if (keys.empty())
    {
        return {};
    }
    auto const after = std::upper_bound(keys.begin(), keys.end(), frame,
                                        [](int wanted, AdjustKeyModel const& key) { return wanted < key.frame; });
    if (after == keys.begin())
    {
        return keys.front().offsets;
    }
    AdjustKeyModel const& before = *(after - 1);
    if (after == keys.end())
    {
        return before.offsets;
    }
    double const along = static_cast<double>(frame - before.frame) / (after->frame - before.frame);
    std::array<double, 8> offsets;
    for (std::size_t i = 0; i < 8; ++i)
    {
        offsets[i] = before.offsets[i] + along * (after->offsets[i] - before.offsets[i]);
    }
    return offsets;
}

}
