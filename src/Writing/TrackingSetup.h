#pragma once
// What exporters of layers do at the start and at the end of an export.

#include "Core/ExportApi.h"
#include "Host/ExportedFiles.h"

#include <QString>
#include <QStringList>

class KORV_ProjectManager;

namespace Anm
{
class View;
}
namespace Korvane
{
class ExporterHelperBase;
class TrackingExporterHelper;
}

namespace Export
{

/// Points the helper at the whole range of a layer.
/// @param framesToExport from the options of the export
void coverWholeLayer(Korvane::ExporterHelperBase& helper, KORV_ProjectManager const& project, unsigned int layerId,
                     Anm::View const& view, int framesToExport);

/// Whether the layer has any frame in the project.
bool isLayerInProject(KORV_ProjectManager const& project, unsigned int layerId);

/// Points the helper at the whole range of a layer, on the clip that the layer was
/// tracked on.
///
/// @param framesToExport from the options of the export
/// @throws KORV_BadArgument when there is no such layer or its clip is gone
void setUpTrackingHelper(Korvane::TrackingExporterHelper& helper, KORV_ProjectManager& project, unsigned int layerId,
                         Anm::View const& view, int framesToExport);

/// The result of an export of one text.
///
/// @param text stored under `path` as UTF-8
/// @param failedCount rows that were left out
/// @param failures a line each; empty ones are dropped, the others get the path in front
Korvane::ExportedFiles textResult(QString const& path, QString const& text, int failedCount,
                                  QStringList const& failures);

/// The same of an export that has its bytes already.
Korvane::ExportedFiles fileResult(QString const& path, QByteArray const& contents, int failedCount,
                                  QStringList const& failures);

/// Adds the failures to the messages, in the same form.
void appendFailures(Korvane::ExportedFiles& result, QString const& path, QStringList const& failures);

}
