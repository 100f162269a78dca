#pragma once

#include "Core/ExportApi.h"
#include "Host/CameraSolveExporter.h"
#include "mtx/Vectors.h"

namespace Export
{

/// Camera, rig, points, meshes and models of a solve as a binary FBX scene. What differs between
/// the programs that read it is in derived classes: the version of the file, and which way
/// cameras and objects are turned.
class MARLO_EXPORT_API FBX3DExporterBase : public KV::CameraSolveExporter
{
    Q_OBJECT

public:
    /// The version word of files of version 6.1.
    static constexpr int VERSION_6 = 6;

    /// @param fbxVersion VERSION_6, anything else for a file of the current version
    explicit FBX3DExporterBase(int fbxVersion);
    ~FBX3DExporterBase() override;

    /// A scene with one file. A scene that was solved with one camera is exported in one view,
    /// a rig in one view for that eye or in two for the pair.
    ///
    /// @throws KORV_OperationFailed when the project has no camera, or when the temporary file
    ///         can't be written that the scene goes through
    /// @throws std::bad_any_cast when the options are no map
    Korvane::ExportedFiles exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                             KV::ExportSpec const& spec, ObjectsToExport objects) const override;

    /// Features, reference frame, scene at its origin (not in pixel scale), size of points.
    void setUserOptions(KV::ExportOptionsReceiver& receiver) const override;

    /// Angles as they stand in the file; degrees, about the static axes x, then y, then z.
    ///
    /// @param euler as the host delivers them
    /// @param isStereoRig whether the file's camera is a rig
    /// @param isOldSolve whether `euler` is that of the transposed rotation, in legacy axes
    virtual Mtx_Vector4 adjustCameraRotation(Mtx_Vector4 const& euler, bool isStereoRig, bool isOldSolve) const = 0;

    /// The same for points and models; what others hang on keeps its angles.
    virtual Mtx_Vector4 adjustObjectRotation(Mtx_Vector4 const& euler, bool isStereoRig, bool isOldSolve) const = 0;

    /// Whether a unit is as long as a pixel at the first focal length, without a unit of length
    /// and with the scene's pose in the data.
    virtual bool applyPixelScale() const;

private:
    int m_fbxVersion;
};

}
