#pragma once
// The matchmove project of a scene: takes cameras, points, models and tracked layers of the
// host into the model of KestreliaLib, and writes its file.

#include "Host/Anm.h"
#include "Host/FileAssetMeshes.h"
#include "Host/HostApi.h"
#include "kestrelia/Config.h"
#include "kestrelia/Scene.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

class KORV_Clip;
class KORV_Layer;
class KORV_ProjectManager;

namespace Korvane
{
namespace CameraSolve
{
class ExporterHelper;
struct PointAnimData;
}
}
namespace ZN
{
class Scene3DParameterSet;
}

namespace Rig3D
{

/// One project with one shot, that of a clip. In order: make it with a Config, give moving
/// objects their ids, add what is to be in it, write it or take its scene.
///
/// The scene's own pose isn't in the data: the exporter puts
/// `toKestreliaPose(helper.sceneTransformForExport())` above them where it wants it.
class MARLO_HOST_API KestreliaSetup
{
public:
    /// @param clip what was shot
    /// @param range the frames of the shot, both ends included
    /// @param frameRate per second; fields count as frames here
    /// @param frameOffset what is added to a host frame to give the number in the project
    KestreliaSetup(KORV_Clip const& clip, Anm::ContextRange const& range, KestreliaLib::Config const& config,
                   double frameRate, double frameOffset);
    ~KestreliaSetup();
    KestreliaSetup(KestreliaSetup const&) = delete;
    KestreliaSetup& operator=(KestreliaSetup const&) = delete;

    /// Whether a project could be made: there are frames, a rate and a picture. All other
    /// operations need that.
    bool isValid() const;

    /// Axes, angles and units of a project: the scene's own axes (for old solves as well),
    /// angles in XYZ about moving axes, millimetres, the scene's pose apart. To be called
    /// between initialise() and the first question.
    static void applyHelperSettings(Korvane::CameraSolve::ExporterHelper& helper);

    /// Takes what was set for the solve.
    static void updateConfig(KestreliaLib::Config& config, ZN::Scene3DParameterSet const& scene);

    /// Makes an object of each layer that moves and has something exported that moves with
    /// it, and of each that carries a model.
    void initMovingObjectIds(KORV_ProjectManager const& project, Korvane::CameraSolve::ExporterHelper& helper);

    /// Adds the camera of the helper's view, the points and meshes of its layers, and its
    /// feature sets but for those of an old solve. Names that two things of a kind share get
    /// numbers.
    void addSolveData(Korvane::CameraSolve::ExporterHelper& helper, KORV_ProjectManager const& project,
                      bool includeFeatures);

    /// Adds the meshes of a model that doesn't move by itself.
    ///
    /// @param place where it stands, in what carries it
    /// @param name of the model, for meshes without one
    /// @param parentId text id of the layer that carries it; empty for none
    void addModel(Korvane::CameraSolve::PointAnimData const& place, std::vector<ZN::AssetMesh> const& meshes,
                  QString const& name, QString const& parentId);

    /// Adds the four corners and the centre of a layer's surface as 2D trackers, with the
    /// user's corrections, in the view of the range. Frames without tracking data have no
    /// samples.
    void addLayerTrack(KORV_Layer const& layer, Anm::ContextRange const& range);

    /// The text of the project; empty when there is nothing in it.
    /// @throws KORV_OperationFailed when it is too large
    QByteArray writeProject() const;

    KestreliaLib::Scene& scene();
    KestreliaLib::Scene const& scene() const;

    /// What the user must know of what was added, one line each.
    QStringList failureMessages() const;

    /// Samples that were left out, as they have values that aren't finite.
    int failedCount() const;

private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

/// The frames of a layer that an export in the view is about: from the first to the last of
/// its range with tracking data. Empty where there are none.
MARLO_HOST_API Anm::ContextRange layerFrameRange(KORV_Layer const& layer, Anm::View const& view);

/// A place in the scene as a pose.
/// @param rotation degrees, XYZ about static axes
MARLO_HOST_API KestreliaLib::Pose toKestreliaPose(Sabrel::Vector3 const& position, Sabrel::Vector3 const& rotation,
                                                  Sabrel::Vector3 const& scale);

}
