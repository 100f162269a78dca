#pragma once

#include "Core/ExportApi.h"
#include "Host/CameraSolveExporter.h"

namespace Export
{

/// A camera solve as an Alembic archive (Ogawa): camera, points, meshes.
///
/// Right-handed, y up; lengths in scene units, times one factor when the size of points is to
/// suit the scene. There is a sample for each frame of the project, at its shown number
/// divided by the frame rate; fields are half a frame apart.
class MARLO_EXPORT_API AlembicCameraSolveExporter : public KV::CameraSolveExporter
{
    Q_OBJECT

public:
    AlembicCameraSolveExporter();
    ~AlembicCameraSolveExporter() override;

    /// The archive lies under `path`; without a camera it holds what else the solve has. A
    /// scene in stereo gives the rig's own camera.
    ///
    /// @throws KORV_ExternalException with the library's words when it refuses something
    /// @throws KORV_OperationFailed when the file would be larger than one can be
    Korvane::ExportedFiles exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                             KV::ExportSpec const& spec, ObjectsToExport objects) const override;

    /// Features, reference frame, scene at the origin, size of points.
    void setUserOptions(KV::ExportOptionsReceiver& receiver) const override;
};

}
