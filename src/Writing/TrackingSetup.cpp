#include "Writing/TrackingSetup.h"

#include "Writing/ThrowHelpers.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "text/Names.h"

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

void setUpTrackingHelper(Korvane::TrackingExporterHelper& helper, KORV_ProjectManager& project, unsigned int layerId,
                         Anm::View const& view, int framesToExport)
{
    coverWholeLayer(helper, project, layerId, view, framesToExport);
    KORV_Layer const* const layer = project.pGetSelectionManager()->layerFromNumericID(layerId, false);
    if (!layer)
    {
        throwBadArgument(QStringLiteral("No selected layer"));
    }
    KORV_Clip const* const clip =
        project.pGetParameterManager()->getClip(layer->trackingInputClipID(true, false, true));
    if (!clip)
    {
        throwBadArgument(QStringLiteral("The layer \"%1\" has no clip").arg(layer->name()));
    }
    helper.setClip(*clip);
}

Korvane::ExportedFiles textResult(QString const& path, QString const& text, int failedCount,
                                  QStringList const& failures)
{
    return fileResult(path, text.toUtf8(), failedCount, failures);
}

Korvane::ExportedFiles fileResult(QString const& path, QByteArray const& contents, int failedCount,
                                  QStringList const& failures)
{
    Korvane::ExportedFiles result;
    result.files.insert(path, contents);
    result.failedCount = failedCount;
    appendFailures(result, path, failures);
    return result;
}

void appendFailures(Korvane::ExportedFiles& result, QString const& path, QStringList const& failures)
{
    for (QString const& failure : failures)
    {
        if (!failure.isEmpty())
        {
            result.messages.append(Text::pathMessage(path, failure));
        }
    }
}

}
