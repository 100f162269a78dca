#include "LayerMotion.h"

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

Quad pictureQuad(double width, double height)
{
    return {{{0, 0}, {width, 0}, {0, height}, {width, height}}};
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
      m_base(m_ontoFootage ? pictureQuad(choice.pictureWidth, choice.pictureHeight) : m_corners),
      m_centre(crossingOfDiagonals(m_base))
{
    if (choice.option == ZN_TRACKING_OPTION_OFFSET)
    {
        m_offset = Homography::betweenQuads(m_corners, moved(m_corners, adjustOffsets(layer.referenceFrame)));
    }
    if (m_ontoFootage)
    {
        m_reference = surfaceTo(nearestFrameIndex(track.frames, choice.referenceFrame));
    }
}

PointRow LayerMotion::base() const
{
    return {m_base[0], m_base[1], m_base[2], m_base[3], m_centre};
}

std::optional<Homography> LayerMotion::map(std::size_t index) const
{
    // The adjusted map is solved from carried corners, which hide a corner that went
    // past infinity on the way.
    if (isAdjusted() && !keepsInFront(tracked(index), m_corners))
    {
        return std::nullopt;
    }
    Homography motion = surfaceTo(index);
    if (m_ontoFootage)
    {
        // Stabilizing is the inverse of the surface's motion; inverting that gives
        // the motion itself.
        bool const forwards = m_choice.invert && m_choice.option == ZN_TRACKING_OPTION_STABILIZED;
        motion = forwards ? motion * m_reference.inverse() : m_reference * motion.inverse();
    }
    return keepsInFront(motion, base()) ? std::optional<Homography>(motion) : std::nullopt;
}

std::optional<PointRow> LayerMotion::row(std::size_t index) const
{
    std::optional<Homography> const motion = map(index);
    if (!motion)
    {
        return std::nullopt;
    }
    PointRow row = base();
    std::transform(row.begin(), row.end(), row.begin(), [&](TXI::Pos2 const& p) { return motion->apply(p); });
    return row;
}

bool LayerMotion::isAdjusted() const
{
    return m_choice.option == ZN_TRACKING_OPTION_ADJUSTED && !m_layer.adjust.empty();
}

Homography LayerMotion::tracked(std::size_t index) const
{
    Homography h;
    std::copy_n(m_track.homographies.begin() + static_cast<std::ptrdiff_t>(index * 9), 9, h.m.begin());
    return h;
}

Homography LayerMotion::surfaceTo(std::size_t index) const
{
    Homography const h = tracked(index);
    if (m_choice.option == ZN_TRACKING_OPTION_OFFSET)
    {
        return h * m_offset;
    }
    if (!isAdjusted())
    {
        return h;
    }
    Quad carried;
    std::transform(m_corners.begin(), m_corners.end(), carried.begin(),
                   [&](TXI::Pos2 const& corner) { return h.apply(corner); });
    return Homography::betweenQuads(m_corners, moved(carried, adjustOffsets(m_track.frames[index])));
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
