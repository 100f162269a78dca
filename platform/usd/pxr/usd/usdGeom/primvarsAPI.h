#pragma once

#include <pxr/usd/usd/schemaBase.h>
#include <pxr/usd/usdGeom/primvar.h>

PXR_NAMESPACE_OPEN_SCOPE

/// The values over the surface of a prim.
class MARLO_USD_API UsdGeomPrimvarsAPI : public UsdSchemaBase
{
public:
    explicit UsdGeomPrimvarsAPI(UsdPrim const& prim = UsdPrim()) : UsdSchemaBase(prim)
    {
    }

    explicit UsdGeomPrimvarsAPI(UsdSchemaBase const& schema) : UsdSchemaBase(schema.GetPrim())
    {
    }

    /// @param name without "primvars:"
    /// @param interpolation none when empty
    /// @param elementSize of no use here
    UsdGeomPrimvar CreatePrimvar(TfToken const& name, SdfValueTypeName const& typeName,
                                 TfToken const& interpolation = TfToken(), int elementSize = -1) const;
};

PXR_NAMESPACE_CLOSE_SCOPE
