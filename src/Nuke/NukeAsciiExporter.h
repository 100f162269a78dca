#pragma once

#include "Host/ExporterHelper.h"
#include "Host/TrackingExporter.h"

#include "Core/ExportApi.h"

class KORV_Layer;

namespace Export
{

/// Four plain text files for each view, one for each corner of the surface.
class MARLO_EXPORT_API NukeAsciiExporter : public Korvane::TrackingExporter
{
public:
    NukeAsciiExporter();
    ~NukeAsciiExporter() override;

    /// The names of the files are made of `path`; nothing lies under `path` itself.
    /// Without a view there is no file. Lines say nothing of frames, so one that has no
    /// finite point holds the point before it, and is counted.
    /// @throws KORV_BadArgument when there is no such layer
    Korvane::ExportedFiles exportTracking(KORV_ProjectManager& project, QString const& path, unsigned int layerId,
                                          Anm::Context const& referenceFrame, Options const& options) const override;

private:
    /// @param options with this one view
    /// @param isMultiView whether the names of the files hold the view
    void addExportFilesForView(Korvane::ExportedFiles& files, KORV_ProjectManager& project, QString const& path,
                               KORV_Layer const& layer, Anm::Context const& referenceFrame, Options const& options,
                               bool isMultiView) const;

    mutable Korvane::TrackingExporterHelper m_helper;
};

}
