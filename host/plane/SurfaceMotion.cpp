#include "SurfaceMotion.h"

#include "Host/KORV_ProjectManager.h"
#include "Host/MessageBox.h"

namespace MarloHost
{

namespace
{

TXI::Pos2 firstCorner(LayerModel const& layer)
{
    return {layer.corners[0], layer.corners[1]};
}

// A factor on a homography means nothing; with this one w tells what is behind the
// viewer. All corners are on one side, or the homography isn't used.
Homography facing(Homography h, TXI::Pos2 const& seen)
{
    if (h.project(seen).w < 0)
    {
        for (double& entry : h.m)
        {
            entry = -entry;
        }
    }
    return h;
}

}

SurfaceMotion::SurfaceMotion(KORV_Layer::Data const& layer, int viewIndex)
    : SurfaceMotion(*layer.model, viewIndex < 0 ? nullptr : layer.tracks[static_cast<std::size_t>(viewIndex)])
{
}

SurfaceMotion::SurfaceMotion(LayerModel const& layer, TrackModel const* track)
{
    if (!track || track->frames.empty())
    {
        return;
    }
    bool const isAdjusted = !layer.adjust.empty();
    MotionChoice choice;
    choice.option = ZN_TRACKING_OPTION_ADJUSTED;
    LayerMotion const motion(layer, *track, choice);
    m_frames.reserve(track->frames.size());
    m_maps.reserve(track->frames.size());
    for (std::size_t index = 0; index < track->frames.size(); ++index)
    {
        if (std::optional<Homography> const map = motion.map(index))
        {
            m_frames.push_back(track->frames[index]);
            m_maps.push_back(facing(*map, firstCorner(layer)));
            if (isAdjusted)
            {
                Homography const tracked = motion.tracked(index);
                m_corrections.push_back(map->m == tracked.m ? Homography() : *map * tracked.inverse());
            }
        }
    }
}

Homography SurfaceMotion::at(int frame) const
{
    return m_frames.empty() ? Homography() : m_maps[nearestFrameIndex(m_frames, frame)];
}

Homography SurfaceMotion::correction(int frame) const
{
    return m_corrections.empty() ? Homography() : m_corrections[nearestFrameIndex(m_frames, frame)];
}

bool SurfaceMotion::isUntracked() const
{
    return m_frames.empty();
}

SurfaceMotion motionOfContours(KORV_ProjectManager const& project, KORV_Layer const& layer, Anm::View const& view)
{
    Anm::Views const& views = *project.views();
    SurfaceMotion motion(layer.data(), views.viewIndex(view));
    if (motion.isUntracked() && !layer.activeContours().isEmpty())
    {
        QString const inView =
            views.viewCount() > 1 ? QStringLiteral(" in view \"%1\"").arg(views.name(view)) : QString();
        QString const title = QStringLiteral("Layer \"%1\"").arg(layer.name());
        QString const text =
            QStringLiteral("no tracking data%1, its contours move by their own keys alone").arg(inView);
        project.callbacks().warning(title.toStdString(), text.toStdString(), KORV_MESSAGEBOX_OK);
    }
    return motion;
}

std::vector<SurfaceMotion> motionsOfViews(KORV_Layer::Data const& layer)
{
    std::vector<SurfaceMotion> motions;
    motions.reserve(layer.tracks.size());
    for (std::size_t view = 0; view < layer.tracks.size(); ++view)
    {
        motions.emplace_back(layer, static_cast<int>(view));
    }
    return motions;
}

}
