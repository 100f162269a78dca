#pragma once

#include "Core/ExporterWrapper.h"
#include "FindFormat.h"
#include "Host/Anm.h"

#include <memory>
#include <vector>

/// A camera solve export of chosen views; the library's own wrapper knows the default view
/// only. Two views give the stereo rig where a format holds it.
class CameraViewsExporter : public Export::CameraSolveExporterWrapper
{
public:
    /// @param format of the kind Camera
    CameraViewsExporter(FormatEntry const& format, Export::UserCameraSolveOptions const& options,
                        std::vector<Anm::View> const& views);

    Korvane::ExportedFiles getExportResult(KORV_ProjectManager& project, QString const& path) const override;

private:
    std::shared_ptr<KV::CameraSolveExporter> m_exporter;
    Export::UserCameraSolveOptions m_options;
    std::vector<Anm::View> m_views;
};
