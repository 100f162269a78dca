#pragma once

#include "FBX/FBX3DExporterBase.h"

namespace Export
{

/// FBX 7.7 for Nuke, which takes a node's own axes for those of its camera: it looks along −z.
class MARLO_EXPORT_API FBX3DExporterNuke : public FBX3DExporterBase
{
    Q_OBJECT

public:
    FBX3DExporterNuke();

    Mtx_Vector4 adjustCameraRotation(Mtx_Vector4 const& euler, bool isStereoRig, bool isOldSolve) const override;
    Mtx_Vector4 adjustObjectRotation(Mtx_Vector4 const& euler, bool isStereoRig, bool isOldSolve) const override;
    bool applyPixelScale() const override;
};

}
