#include "Writing/Setup.h"

#include "Host/ExporterHelper.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Writing/ThrowHelpers.h"

namespace Export
{

namespace
{

// In both directions: what callers of the host pass for "no limit".
constexpr int UNLIMITED = 2147483647;

}

void coverWholeLayer(Korvane::ExporterHelperBase& helper, KORV_ProjectManager const& project, unsigned int layerId,
                     Anm::View const& view, int framesToExport)
{
    helper.initialiseWithPMAndRange(project, layerId, view, framesToExport, Anm::Time::fromInt(-UNLIMITED),
                                    Anm::Time::fromInt(UNLIMITED), false);
}

bool isLayerInProject(KORV_ProjectManager const& project, unsigned int layerId)
{
    return Korvane::ExporterHelperBase::layerIsWithinProject(project, layerId, Anm::Time::fromInt(-UNLIMITED),
                                                             Anm::Time::fromInt(UNLIMITED), false);
}

Missing trySetUpTrackingHelper(Korvane::TrackingExporterHelper& helper, KORV_ProjectManager& project,
                               unsigned int layerId, Anm::View const& view, int framesToExport)
{
    KORV_Layer const* const layer = project.pGetSelectionManager()->layerFromNumericID(layerId, false);
    if (!layer)
    {
        return Missing::Layer;
    }
    KORV_Clip const* const clip =
        project.pGetParameterManager()->getClip(layer->trackingInputClipID(true, false, true));
    if (!clip)
    {
        return Missing::Clip;
    }
    coverWholeLayer(helper, project, layerId, view, framesToExport);
    helper.setClip(*clip);
    return Missing::Nothing;
}

void setUpTrackingHelper(Korvane::TrackingExporterHelper& helper, KORV_ProjectManager& project, unsigned int layerId,
                         Anm::View const& view, int framesToExport)
{
    switch (trySetUpTrackingHelper(helper, project, layerId, view, framesToExport))
    {
    case Missing::Layer:
        throwBadArgument(QStringLiteral("No selected layer"));
    case Missing::Clip:
        throwNoClip(project.pGetSelectionManager()->layerFromNumericID(layerId, false)->name());
    case Missing::Nothing:
        break;
    }
}

void throwNoClip(QString const& layerName)
{
    throwBadArgument(QStringLiteral("The layer \"%1\" has no clip").arg(layerName));
}

}
