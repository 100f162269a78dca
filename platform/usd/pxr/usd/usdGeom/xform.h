#pragma once

#include <pxr/usd/usdGeom/xformable.h>

PXR_NAMESPACE_OPEN_SCOPE

/// A place and nothing else.
class MARLO_USD_API UsdGeomXform : public UsdGeomXformable
{
public:
    explicit UsdGeomXform(UsdPrim const& prim = UsdPrim()) : UsdGeomXformable(prim)
    {
    }

    /// As UsdStage::DefinePrim.
    static UsdGeomXform Define(UsdStagePtr const& stage, SdfPath const& path);

    static char const* _TypeName();
    static bool _IsTypeOf(TfToken const& typeName);

protected:
    bool _IsCompatible() const override;
};

PXR_NAMESPACE_CLOSE_SCOPE
