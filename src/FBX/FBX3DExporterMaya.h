#pragma once

#include "FBX/FBX3DExporterBase.h"

namespace Export
{

/// FBX in the axes that Maya and most others expect: cameras look along their +x.
class MARLO_EXPORT_API FBX3DExporterMayaBase : public FBX3DExporterBase
{
    Q_OBJECT

public:
    explicit FBX3DExporterMayaBase(int fbxVersion);

    /// A quarter turn about the camera's own y axis goes first. The camera of a rig stays as it
    /// is.
    Mtx_Vector4 adjustCameraRotation(Mtx_Vector4 const& euler, bool isStereoRig, bool isOldSolve) const override;

    /// The same with half a turn.
    Mtx_Vector4 adjustObjectRotation(Mtx_Vector4 const& euler, bool isStereoRig, bool isOldSolve) const override;
};

/// FBX 6.1.
class MARLO_EXPORT_API FBX3DExporterMaya6 : public FBX3DExporterMayaBase
{
    Q_OBJECT

public:
    FBX3DExporterMaya6();
};

/// FBX 7.7.
class MARLO_EXPORT_API FBX3DExporterMaya7 : public FBX3DExporterMayaBase
{
    Q_OBJECT

public:
    FBX3DExporterMaya7();
};

}
