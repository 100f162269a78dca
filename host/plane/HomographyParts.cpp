// Homographies of layers for shape exporters, whole and in parts.

#include "Host/KORV_ProjectManager.h"
#include "Host/ShapeExporter.h"
#include "Host/ZN_ClipInfo.h"
#include "SurfaceMotion.h"

#include <boost/make_shared.hpp>

#include <algorithm>
#include <cmath>

namespace Korvane
{

namespace
{

using MarloHost::Homography;

constexpr double PI = 3.141592653589793;

Homography inUnits(Contour::HomographyWithCamera const& record)
{
    Homography const toPixels{{record.width, 0, 0, 0, record.height, 0, 0, 0, 1}};
    Homography const toUnits{{1 / record.width, 0, 0, 0, 1 / record.height, 0, 0, 0, 1}};
    Homography unit = toUnits * Homography{record.homography.m} * toPixels;
    double const last = unit.m[8];
    for (double& entry : unit.m)
    {
        entry /= last;
    }
    return unit;
}

// The upper left block is R(rotation) S with S symmetric, its polar decomposition
// (R is the turn nearest to the block, so atan2(c - b, a + d)); half the trace of S is
// the scale.
HomographyComponents decomposed(Homography const& h)
{
    auto const& [a, b, tx, c, d, ty, px, py, last] = h.m;
    HomographyComponents parts;
    parts.rotation = std::atan2(c - b, a + d);
    double const cosine = std::cos(parts.rotation);
    double const sine = std::sin(parts.rotation);
    double const s00 = cosine * a + sine * c;
    double const s01 = cosine * b + sine * d;
    double const s11 = cosine * d - sine * b;
    // The trace of a pure reflection is 0, which no shear could be a multiple of. A scale
    // this small changes the block by as little.
    double const least = 1e-10 * std::max(std::fabs(s00), std::fabs(s01));
    parts.scale = std::max((s00 + s11) / 2, least);
    parts.shearX = (s00 - s11) / (2 * parts.scale);
    parts.shearY = s01 / parts.scale;
    parts.translationX = tx;
    parts.translationY = ty;
    parts.perspectiveX = px;
    parts.perspectiveY = py;
    return parts;
}

// Rotations go on from the frame before; one that isn't finite is left out of the walk.
void unwrapRotations(QVector<HomographyComponents>& list)
{
    double before = 0;
    for (HomographyComponents& parts : list)
    {
        if (std::isfinite(parts.rotation))
        {
            parts.rotation -= 2 * PI * std::round((parts.rotation - before) / (2 * PI));
            before = parts.rotation;
        }
    }
}

}

boost::shared_ptr<Contour::HomographyMap>
ShapeExportHelper::buildHomogMap(KORV_ProjectManager const& project, KORV_Layer const& layer, Anm::View const& view)
{
    KORV_Layer::Data const& data = layer.data();
    MarloHost::SurfaceMotion const motion = MarloHost::motionOfContours(project, layer, view);
    ZN_BaseClipInfo const& clip = data.clip->info();
    auto map = boost::make_shared<Contour::HomographyMap>();
    for (int frame = data.inPoint; frame <= data.outPoint; ++frame)
    {
        map->insert(map->constEnd(), Anm::Context(Anm::Time::fromInt(frame), view),
                    {Sabrel::Matrix33{motion.at(frame).m}, static_cast<double>(clip.width()),
                     static_cast<double>(clip.height())});
    }
    return map;
}

QVector<ShapeExportHelper::StandIn> ShapeExportHelper::standIns(KORV_ProjectManager const& project,
                                                                KORV_Layer const& layer, Anm::View const& view)
{
    KORV_Layer::Data const& data = layer.data();
    int const index = project.views()->viewIndex(view);
    MarloHost::TrackModel const* const track = index < 0 ? nullptr : data.tracks[static_cast<std::size_t>(index)];
    QVector<StandIn> found;
    if (!track || track->frames.empty())
    {
        return found;
    }
    for (int frame = data.inPoint; frame <= data.outPoint; ++frame)
    {
        int const tracked = track->frames[MarloHost::nearestFrameIndex(track->frames, frame)];
        if (tracked != frame)
        {
            found.append({frame, tracked});
        }
    }
    return found;
}

QVector<HomographyComponents>
ShapeExportHelper::buildComponentsList(boost::shared_ptr<Contour::HomographyMap> const& map, unsigned int count)
{
    QVector<HomographyComponents> list(static_cast<int>(count));
    for (auto entry = map->constBegin(); entry != map->constEnd(); ++entry)
    {
        int const frame = entry.key().frameValue();
        if (frame >= 0 && frame < list.size())
        {
            list[frame] = decomposed(inUnits(entry.value()));
        }
    }
    unwrapRotations(list);
    return list;
}

}
