#pragma once
// The reference host's records behind the 3D scene.

#include "Host/KORV_ProjectManager.h"
#include "Host/Scene3D.h"
#include "marlohost/ProjectModel.h"

struct ZN::Camera3DParameterSet::Data
{
    MarloHost::CameraModel const* model = nullptr;
    Anm::Parameter<unsigned int> solved;
    Anm::Parameter<double> filmSize;

    /// Where the camera is from the pose of the model: an eye of a rig stands to the side and
    /// may be turned inwards. Null for the model's own camera.
    MarloHost::StereoModel const* rig = nullptr;

    /// -1 for the left eye, 1 for the right one.
    int side = 0;
};

struct ZN::Point3DParameterSet::Data
{
    MarloHost::PoseModel const* pose = nullptr;

    /// What it hangs on; null for the scene.
    Point3DParameterSet const* parent = nullptr;

    /// Whether it hangs on something whose pose is never multiplied into its own.
    bool isCarried = false;
};

struct ZN::Features3DParameterSet::Data
{
    MarloHost::FeatureSetModel const* model = nullptr;
    QString parentId;

    /// What the points move with: a layer, or the root of the feature sets.
    Point3DParameterSet const* carrier = nullptr;
};

namespace MarloHost
{

/// The scene of a project; empty when it has no solve. The model must outlive it.
///
/// @throws KORV_BadArgument when the solve names a layer that isn't there
std::unique_ptr<ZN::Scene3DParameterSet> makeScene(ProjectModel const& model, KORV_SelectionManager const& layers);

/// Width of the camera's film back as the picture is seen, in millimetres.
double filmBackWidth(CameraModel const& camera, ClipModel const& firstClip);

}
