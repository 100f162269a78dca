#pragma once
// How exporters of layers point a helper at what they export.

#include "Core/ExportApi.h"

#include <QString>

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
MARLO_EXPORT_API void coverWholeLayer(Korvane::ExporterHelperBase& helper, KORV_ProjectManager const& project,
                                      unsigned int layerId, Anm::View const& view, int framesToExport);

/// Whether the layer has any frame in the project.
MARLO_EXPORT_API bool isLayerInProject(KORV_ProjectManager const& project, unsigned int layerId);

/// What an export of a layer's track can't do without.
enum class Missing
{
    Nothing,
    Layer,
    Clip
};

/// Points the helper at the whole range of a layer, on the clip that the layer was
/// tracked on, for exporters with failures of their own.
///
/// @param framesToExport from the options of the export
/// @return what isn't there; then the helper isn't ready
[[nodiscard]] MARLO_EXPORT_API Missing trySetUpTrackingHelper(Korvane::TrackingExporterHelper& helper,
                                                              KORV_ProjectManager& project, unsigned int layerId,
                                                              Anm::View const& view, int framesToExport);

/// The same for all others.
/// @throws KORV_BadArgument when there is no such layer or its clip is gone
MARLO_EXPORT_API void setUpTrackingHelper(Korvane::TrackingExporterHelper& helper, KORV_ProjectManager& project,
                                          unsigned int layerId, Anm::View const& view, int framesToExport);

/// @throws KORV_BadArgument that says which layer has no clip
[[noreturn]] MARLO_EXPORT_API void throwNoClip(QString const& layerName);

}
