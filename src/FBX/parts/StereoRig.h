#pragma once

#include "FBX/parts/SceneContext.h"

namespace Export
{
namespace FBXParts
{

/// Gives a rig its two eyes, their distance, how they stand to one another, and the shifts of
/// their pictures.
///
/// @param data of the rig's own camera; the eyes have the same lens
void buildStereoRig(SceneContext& context, ZN::StereoCamera3DParameterSet const& parameters, FbxCameraStereo& rig,
                    Korvane::CameraSolve::CameraAnimData const& data);

}
}
