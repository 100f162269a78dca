#pragma once

#include "FBX/parts/SceneContext.h"

namespace Export
{
namespace FBXParts
{

/// The camera of an export. Fixes where old solves have their origin, and the scale of
/// markers.
///
/// @return what it was made of
Korvane::CameraSolve::CameraAnimData buildCamera(SceneContext& context, ZN::Camera3DParameterSet const& parameters,
                                                 FbxCamera& camera);

/// Picture, film and planes; without the focal length.
void setUpCamera(SceneContext const& context, FbxCamera& camera);

/// The focal length in millimetres, keyed where it changes; for an old solve, whose focal
/// lengths are in pixels, the angle of view.
void setFocalLength(SceneContext& context, FbxCamera& camera, Korvane::CameraSolve::CameraAnimData const& data);

}
}
