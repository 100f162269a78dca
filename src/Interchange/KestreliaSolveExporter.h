#pragma once

#include "Core/ExportApi.h"
#include "Host/CameraSolveExporter.h"

namespace Export
{

/// Camera, points and models of a solve as a project of the matchmoving application
/// Kestrelia.
class MARLO_EXPORT_API KestreliaSolveExporter : public KV::CameraSolveExporter
{
    Q_OBJECT

public:
    KestreliaSolveExporter();
    ~KestreliaSolveExporter() override;

    /// One project with one shot: the camera of the first view, that of the eye in stereo.
    /// Without one that could be made there is a message and no file.
    ///
    /// @throws std::bad_any_cast when the options are no map
    Korvane::ExportedFiles exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                             KV::ExportSpec const& spec, ObjectsToExport objects) const override;

    /// One check box: whether feature points are exported.
    void setUserOptions(KV::ExportOptionsReceiver& receiver) const override;
};

}
