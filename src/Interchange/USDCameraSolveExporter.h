#pragma once

#include "Core/ExportApi.h"
#include "Host/CameraSolveExporter.h"

namespace Export
{

/// A camera solve as a stage in the text form of USD.
class MARLO_EXPORT_API USDCameraSolveExporter : public KV::CameraSolveExporter
{
    Q_OBJECT

public:
    /// One camera, and a transform for each layer, group, point, feature set and model. Of a scene
    /// in stereo the rig's own camera is exported. Samples are at shown frame numbers.
    ///
    /// @throws std::runtime_error when the scene has no camera
    /// @throws std::bad_any_cast when the options are no map
    Korvane::ExportedFiles exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                             KV::ExportSpec const& spec, ObjectsToExport objects) const override;

    /// Features, reference frame, scene at its origin, and how large points are.
    void setUserOptions(KV::ExportOptionsReceiver& receiver) const override;
};

}
