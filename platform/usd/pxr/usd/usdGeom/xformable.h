#pragma once

#include <pxr/usd/usd/schemaBase.h>

PXR_NAMESPACE_OPEN_SCOPE

/// What has a place: everything here.
class MARLO_USD_API UsdGeomXformable : public UsdSchemaBase
{
public:
    explicit UsdGeomXformable(UsdPrim const& prim = UsdPrim()) : UsdSchemaBase(prim)
    {
    }

    static bool _IsTypeOf(TfToken const& typeName);

protected:
    bool _IsCompatible() const override;
};

PXR_NAMESPACE_CLOSE_SCOPE
