// FBX 3D Data 6.1.0 and 7.7.0: Maya, 3ds Max, Blender and others bring the file in with File,
// Import. See FBX3DExporterBase.cpp for the shape of the scene.
//
// FBX cameras look along their +x with y up, where those of a solve look along −z: a quarter
// turn about the camera's own y axis goes ahead of its rotation. Points and models are turned
// by half; nodes that carry others are not, so that what hangs below them stays where it was.

#include "FBX/FBX3DExporterMaya.h"

#include "FBX/parts/Turns.h"

namespace Export
{

namespace
{

constexpr int VERSION_7 = 7;

constexpr double QUARTER_TURN = 1.5707963267948966;
constexpr double HALF_TURN = 3.141592653589793;

// The camera of a rig, and what is exported along with one, isn't turned.
Mtx_Vector4 adjusted(Mtx_Vector4 const& euler, bool isStereoRig, bool isOldSolve, double turn)
{
    if (isStereoRig && !isOldSolve)
    {
        return euler;
    }
    return FBXParts::turned(euler, isOldSolve, isStereoRig ? 0.0 : turn);
}

}

FBX3DExporterMayaBase::FBX3DExporterMayaBase(int fbxVersion) : FBX3DExporterBase(fbxVersion)
{
}

Mtx_Vector4 FBX3DExporterMayaBase::adjustCameraRotation(Mtx_Vector4 const& euler, bool isStereoRig,
                                                        bool isOldSolve) const
{
    return adjusted(euler, isStereoRig, isOldSolve, QUARTER_TURN);
}

Mtx_Vector4 FBX3DExporterMayaBase::adjustObjectRotation(Mtx_Vector4 const& euler, bool isStereoRig,
                                                        bool isOldSolve) const
{
    return adjusted(euler, isStereoRig, isOldSolve, HALF_TURN);
}

FBX3DExporterMaya6::FBX3DExporterMaya6() : FBX3DExporterMayaBase(VERSION_6)
{
}

FBX3DExporterMaya7::FBX3DExporterMaya7() : FBX3DExporterMayaBase(VERSION_7)
{
}

}
