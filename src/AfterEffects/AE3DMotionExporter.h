#pragma once

#include "AfterEffects/AEExportBuilder.h"
#include "Core/ExportApi.h"
#include "Host/CameraSolveExporter.h"
#include "Host/CameraSolveHelper.h"
#include "Host/KORV_ProjectManager.h"

#include <QPointer>
#include <QStringList>

#include <memory>
#include <vector>

namespace Export
{

/// Camera and solved points as 3D motion data for the importer plug-in of After Effects.
class MARLO_EXPORT_API AE3DMotionExporter : public KV::CameraSolveExporter, public KV::NullAccuracySource
{
    Q_OBJECT

public:
    /// @param version 2.0 or more hangs points under the nulls of their layers; below, every
    ///        null stands for itself, in world space
    explicit AE3DMotionExporter(float version);
    ~AE3DMotionExporter() override;

    /// One keyframe document for the camera and one for each null, behind a header that
    /// names them. A stereo pair is exported one eye at a time.
    ///
    /// @throws KORV_OperationFailed when the scene has no camera for the views
    /// @throws std::bad_any_cast when the options are no map
    Korvane::ExportedFiles exportCameraSolve(KORV_ProjectManager& project, QString const& path,
                                             KV::ExportSpec const& spec, ObjectsToExport objects) const override;

    /// One check box: whether feature points are exported.
    void setUserOptions(KV::ExportOptionsReceiver& receiver) const override;

    /// Points the helper at the project: units of 1/72 inch, axes x right, y down, z away,
    /// one scene unit as long as a pixel at the camera's first focal length.
    ///
    /// @param selectedOnly,visibleOnly which objects are taken
    void prepareToExport(KORV_ProjectManager& project, Korvane::CameraSolve::ExporterHelper::LayerChoice const& layers,
                         std::vector<Anm::View> const& views, int framesToExport, bool selectedOnly, bool visibleOnly,
                         bool includeFeatures) const;

protected:
    virtual Korvane::CameraSolve::ExporterHelper& helper() const;

    /// The camera of the exported view, an eye of the rig for a scene in stereo; null when
    /// there is none or two views are exported at once. Fixes the scale of positions.
    boost::shared_ptr<ZN::Camera3DParameterSet> cameraForExport() const;
    ZN::Scene3DParameterSet& scene3DData() const;

    /// @return what the user must know of it, one line each
    QStringList writeAll(AEExportBuilder& builder, bool includeFeatures) const;

private:
    class SceneWriter;

    mutable std::vector<Anm::View> m_views;
    mutable std::unique_ptr<Korvane::CameraSolve::ExporterHelper> m_helper;
    mutable QPointer<KORV_ProjectManager> m_project;

    /// Times every position: scenes in stereo are in metres.
    mutable double m_positionScale = 1.0;
    float m_version;
};

}
