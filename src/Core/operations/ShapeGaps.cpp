#include "Core/operations/ShapeGaps.h"

#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Writing/Frames.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"

#include <algorithm>

namespace Export
{

namespace
{

std::vector<int> trackedFrames(KORV_ProjectManager const& project, KORV_Layer const& layer, Anm::View const& view,
                               int last)
{
    std::vector<int> frames;
    for (int frame = 0; frame <= last; ++frame)
    {
        if (project.sm()->isLayerTrackedAtFrame(layer, Anm::Context(Anm::Time::fromInt(frame), view)))
        {
            frames.push_back(frame);
        }
    }
    return frames;
}

/// Of two that are as near the earlier one.
int nearest(std::vector<int> const& frames, int frame)
{
    auto const after = std::lower_bound(frames.begin(), frames.end(), frame);
    if (after == frames.begin())
    {
        return frames.front();
    }
    bool const takeAfter = after != frames.end() && *after - frame < frame - *(after - 1);
    return takeAfter ? *after : *(after - 1);
}

QStringList gapsOf(KORV_ProjectManager const& project, KORV_Layer const& layer, Anm::View const& view)
{
    KORV_Clip const* const clip = project.pGetParameterManager()->getClip(layer.trackingInputClipID(true, false, true));
    Korvane::ExporterHelperBase helper(true);
    coverWholeLayer(helper, project, layer.numericID(), view, Korvane::ExporterHelperBase::framesToExport(boost::none));
    int const last = std::max(project.frameCount() - 1, static_cast<int>(helper.lastFrame().value()));
    std::vector<int> const tracked = clip ? trackedFrames(project, layer, view, last) : std::vector<int>();
    if (tracked.empty())
    {
        return {};
    }
    helper.setClip(*clip);
    auto const shown = [&helper](int frame)
    { return QString::number((frame + helper.baseClipOffset()) * static_cast<double>(helper.frameScale())); };
    QStringList gaps;
    forEachFrame(helper,
                 [&](int, int frame)
                 {
                     if (int const standIn = nearest(tracked, frame); standIn != frame)
                     {
                         gaps += QStringLiteral("Frame %1: no tracking data, frame %2 stands in for it")
                                     .arg(shown(frame), shown(standIn));
                     }
                 });
    return gaps;
}

}

QStringList standInFrames(KORV_ProjectManager const& project,
                          QVector<boost::shared_ptr<KORV_Layer const>> const& layers,
                          std::vector<Anm::View> const& views)
{
    QStringList lines;
    for (boost::shared_ptr<KORV_Layer const> const& layer : layers)
    {
        FailuresByView gaps;
        for (Anm::View const& view : layer->activeContours().isEmpty() ? std::vector<Anm::View>() : views)
        {
            gaps.emplace_back(project.projProps().views()->name(view), gapsOf(project, *layer, view));
        }
        for (QString const& line : failuresOfViews(gaps))
        {
            lines += layers.size() == 1 ? line : QStringLiteral("Layer \"%1\": %2").arg(layer->name(), line);
        }
    }
    return lines;
}

}
