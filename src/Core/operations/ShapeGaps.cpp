#include "Core/operations/ShapeGaps.h"

#include "Host/ExporterHelper.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Host/ShapeExporter.h"
#include "Writing/Results.h"
#include "Writing/Setup.h"

namespace Export
{

namespace
{

QStringList gapsOf(KORV_ProjectManager const& project, KORV_Layer const& layer, Anm::View const& view)
{
    KORV_Clip const* const clip = project.pGetParameterManager()->getClip(layer.trackingInputClipID(true, false, true));
    if (!clip)
    {
        return {};
    }
    Korvane::ExporterHelperBase helper(true);
    coverWholeLayer(helper, project, layer.numericID(), view, Korvane::ExporterHelperBase::framesToExport(boost::none));
    helper.setClip(*clip);
    auto const shown = [&helper](int frame)
    { return QString::number((frame + helper.baseClipOffset()) * static_cast<double>(helper.frameScale())); };
    QStringList gaps;
    for (auto const& [frame, tracked] : Korvane::ShapeExportHelper::standIns(project, layer, view))
    {
        gaps +=
            QStringLiteral("Frame %1: no tracking data, frame %2 stands in for it").arg(shown(frame), shown(tracked));
    }
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
