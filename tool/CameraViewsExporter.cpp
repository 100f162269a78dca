#include "CameraViewsExporter.h"

#include "Core/ExporterFactories.h"

#include "Host/CameraSolveExporter.h"
#include "Host/ExporterHelper.h"
#include "Host/KORV_ProjectManager.h"

namespace
{

std::shared_ptr<KV::CameraSolveExporter> exporterOf(FormatEntry const& format)
{
    return Export::CameraSolveExporterFactory::getExporter(format.as<Export::CameraSolveFormat>());
}

}

CameraViewsExporter::CameraViewsExporter(FormatEntry const& format, Export::UserCameraSolveOptions const& options,
                                         std::vector<Anm::View> const& views)
    : CameraSolveExporterWrapper(options, format.format().flags().testFlag(Export::BelongsToLayers),
                                 format.format().displayName(), exporterOf(format)),
      m_exporter(exporterOf(format)),
      m_options(options),
      m_views(views)
{
}

Korvane::ExportedFiles CameraViewsExporter::getExportResult(KORV_ProjectManager& project, QString const& path) const
{
    Anm::Context const context(project.currentFrame().time(), m_views.front(), Anm::ProxyScale::Full);
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.referenceContext = &context;
    spec.views = m_views;
    spec.framesToExport = Korvane::ExporterHelperBase::framesToExport(ZN_TRACKING_OPTION_ADJUSTED);
    spec.customData = m_options.customData;
    return m_exporter->exportCameraSolve(project, path, spec, m_options.objectsToExport);
}
