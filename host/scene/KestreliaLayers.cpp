// Tracked surfaces of layers as 2D trackers of a matchmove project.

#include "KestreliaProject.h"

#include "model/Project.h"
#include "plane/LayerMotion.h"

namespace Rig3D
{

using MarloHost::FrameRow;
using MarloHost::TrackModel;

namespace
{

/// In the order of the points of a row, whose last one, the centre, says nothing more.
constexpr char const* CORNER_NAMES[] = {"lower left", "lower right", "upper left", "upper right"};
constexpr std::size_t CORNERS = 4;

TrackModel const* trackIn(KORV_Layer const& layer, Anm::View const& view)
{
    auto const index = static_cast<std::size_t>(view.id() - Anm::View::defaultViewId());
    auto const& tracks = layer.data().tracks;
    TrackModel const* const track = index < tracks.size() ? tracks[index] : nullptr;
    return track && !track->frames.empty() ? track : nullptr;
}

// Whether the pixels of the layer's clip are those of the shot: another version of it.
bool isOfShot(KORV_Layer const& layer, KestreliaLib::Shot const& shot)
{
    ZN_BaseClipInfo const& clip = layer.data().clip->info();
    return static_cast<int>(clip.width()) == shot.width && static_cast<int>(clip.height()) == shot.height &&
           clip.bIsInterlaced() == shot.isInterlaced;
}

}

void KestreliaSetup::addLayerTrack(KORV_Layer const& layer, Anm::ContextRange const& range)
{
    TrackModel const* const track = range.isEmpty() ? nullptr : trackIn(layer, range.first().view());
    if (!track)
    {
        return;
    }
    if (!isOfShot(layer, m_data->shot()))
    {
        m_data->failures += QStringLiteral("Layer \"%1\" was tracked on a picture of another size and isn't exported")
                                .arg(layer.name());
        return;
    }
    MarloHost::MotionChoice choice;
    choice.option = ZN_TRACKING_OPTION_ADJUSTED;
    MarloHost::LayerMotion const motion(*layer.data().model, *track, choice);
    std::array<KestreliaLib::Samples<KestreliaLib::Vector2>, CORNERS> images;
    for (std::size_t i = 0; i < track->frames.size(); ++i)
    {
        int const frame = track->frames[i];
        bool const isIn = frame >= range.first().frameValue() && frame <= range.last().frameValue();
        FrameRow const row = isIn ? motion.row(i) : FrameRow();
        for (std::size_t corner = 0; corner < CORNERS && row.points; ++corner)
        {
            KestreliaLib::Vector2 const seen{(*row.points)[corner].x + 0.0, (*row.points)[corner].y + 0.0};
            if (MarloHost::isFinite(seen))
            {
                images[corner].add(frame + m_data->offset, seen);
            }
            else
            {
                m_data->filling.leaveOut();
            }
        }
        if (isIn && !row.points)
        {
            m_data->filling.leaveOut();
        }
    }
    unsigned int const group = m_data->addGroup(layer.name());
    for (std::size_t corner = 0; corner < CORNERS; ++corner)
    {
        QString const name = layer.name() + QLatin1Char(' ') + QLatin1String(CORNER_NAMES[corner]);
        m_data->addTracker(name, group).image = std::move(images[corner]);
    }
}

Anm::ContextRange layerFrameRange(KORV_Layer const& layer, Anm::View const& view)
{
    TrackModel const* const track = trackIn(layer, view);
    if (!track)
    {
        return {};
    }
    int const first = std::max(static_cast<int>(layer.inPoint(false)), track->frames.front());
    int const last = std::min(static_cast<int>(layer.outPoint(false)), track->frames.back());
    return Anm::ContextRange(Anm::Context(Anm::Time::fromInt(first), view),
                             Anm::Context(Anm::Time::fromInt(last), view));
}

}
