// FBX 3D Data for Nuke: the user picks the file in a Camera, Axis or ReadGeo node ("read from
// file"). See FBX3DExporterBase.cpp for the shape of the scene.
//
// Nuke takes the axes of a camera's node for those of the camera, which looks along −z with y
// up, so rotations stay as they are. A unit is as long as a pixel at the first focal length,
// and the scene's pose is in the camera and the nodes.

#include "FBX/FBX3DExporterNuke.h"

#include "FBX/parts/Turns.h"

namespace Export
{

namespace
{

constexpr int CURRENT_VERSION = 0;

}

FBX3DExporterNuke::FBX3DExporterNuke() : FBX3DExporterBase(CURRENT_VERSION)
{
}

Mtx_Vector4 FBX3DExporterNuke::adjustCameraRotation(Mtx_Vector4 const& euler, bool, bool isOldSolve) const
{
    return isOldSolve ? FBXParts::turned(euler, isOldSolve, 0.0) : euler;
}

Mtx_Vector4 FBX3DExporterNuke::adjustObjectRotation(Mtx_Vector4 const& euler, bool isStereoRig, bool isOldSolve) const
{
    return adjustCameraRotation(euler, isStereoRig, isOldSolve);
}

bool FBX3DExporterNuke::applyPixelScale() const
{
    return true;
}

}
