#pragma once
// One export of a solve into a stage.

#include "Host/BasicUSDGraph.h"
#include "Host/CameraSolveHelper.h"
#include "Host/KORV_Layer.h"
#include "Host/KORV_ProjectManager.h"
#include "Interchange/parts/USDAxes.h"
#include "Interchange/parts/USDNames.h"

#include <QHash>
#include <QStringList>
#include <pxr/usd/usd/timeCode.h>
#include <pxr/usd/usdGeom/mesh.h>
#include <pxr/usd/usdGeom/xformCommonAPI.h>

#include <optional>
#include <vector>

namespace Export
{

/// What a user chose for an export of a solve.
struct USDChoice
{
    bool includeFeatures = true;

    /// Leaves the pose of the scene out.
    bool sceneAtOrigin = false;

    /// Sizes of points that suit the scene, in the place of one fixed size.
    bool suggestPointSize = false;

    /// Frame in which meshes at rest are taken.
    Anm::Context reference = Anm::Context::invalid();
};

/// Fills a stage: the scene's pose, the camera, then layers, features and models.
class USDSceneWriter
{
public:
    /// @param solve set up for the export; like the others it must outlive this
    USDSceneWriter(KORV_ProjectManager& project, Korvane::CameraSolve::ExporterHelper& solve, KV::BasicUSDGraph& graph,
                   USDChoice const& choice);

    /// @throws std::runtime_error when the scene has no camera
    void write();

    /// Samples that were left out, as they have values that no program reads.
    int failedCount() const
    {
        return m_failedCount;
    }

    /// What failed otherwise, one line each.
    QStringList const& failures() const
    {
        return m_failures;
    }

    Text::UniqueNames const& names() const
    {
        return m_paths.names();
    }

private:
    using Path = PXR_NS::SdfPath;
    using Placer = PXR_NS::UsdGeomXformCommonAPI;
    using PointAnimData = Korvane::CameraSolve::PointAnimData;

    void writeRange();
    void writeScene();
    void writeCamera();
    void writeFocalLength(PXR_NS::UsdAttribute const& attribute, Korvane::CameraSolve::CameraAnimData const& data);
    void measureScene(Korvane::CameraSolve::CameraAnimData const& camera);

    void writeLayers();
    void writeFeatures();
    void writeAssets();
    void writeAsset(ZN::FileAsset3DParameterSet const& asset, Path const& parent, QString const& name);

    /// The prim of a layer; made with that of its group, where it moves with one, when it is new.
    Path layerPath(Korvane::LayerBase const& layer);
    Path makeObject(Path const& parent, QString const& name, ZN::Point3DParameterSet const& object, bool worldSpace);

    /// Those of the helper's current layer or feature set.
    void writePoints(Path const& parent);
    void writePoint(Placer const& placer, PointAnimData const& data);
    void writeMesh(Path const& parent, QString const& name);
    void writeMeshPoints(PXR_NS::UsdGeomMesh const& mesh, Korvane::CameraSolve::MeshAnimData const& data);
    void writeUVs(PXR_NS::UsdGeomMesh const& mesh, std::vector<int> const& faceIndices);

    void writePose(Placer const& placer, PointAnimData const& data);
    void setPose(Placer const& placer, Sabrel::Vector3 const& position, Sabrel::Vector3 const& rotation,
                 Sabrel::Vector3 const& scale, PXR_NS::UsdTimeCode time);

    /// Null for what hangs on no layer.
    template <typename Carried>
    Korvane::LayerBase const* parentOf(Carried const& carried) const;

    /// The shown number of a frame.
    PXR_NS::UsdTimeCode timeOf(Anm::Context const& context) const;

    /// The default for what has but one sample, as it doesn't move.
    PXR_NS::UsdTimeCode timeOf(std::vector<Anm::Context> const& contexts, std::size_t index) const;

    KORV_ProjectManager& m_project;
    ZN::Scene3DParameterSet const& m_scene;
    Korvane::CameraSolve::ExporterHelper& m_solve;
    KV::BasicUSDGraph& m_graph;
    USDChoice m_choice;
    USDAxes m_axes;
    PrimPaths m_paths;
    QHash<Korvane::LayerBase const*, std::string> m_objects;
    Path m_cameraPath;
    Path m_featuresPath;

    /// Median distance of the points from the first position of the camera; 0 without points.
    double m_sceneSize = 0.0;
    float m_pointScale = 0.0F;
    int m_failedCount = 0;
    QStringList m_failures;
};

}
