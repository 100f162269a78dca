#pragma once

#include <pxr/usd/usdGeom/pointBased.h>

PXR_NAMESPACE_OPEN_SCOPE

/// Faces between points.
class MARLO_USD_API UsdGeomMesh : public UsdGeomPointBased
{
public:
    explicit UsdGeomMesh(UsdPrim const& prim = UsdPrim()) : UsdGeomPointBased(prim)
    {
    }

    static UsdGeomMesh Define(UsdStagePtr const& stage, SdfPath const& path);

    UsdAttribute CreateFaceVertexCountsAttr(VtValue const& value = VtValue(), bool writeSparsely = false) const;
    UsdAttribute CreateFaceVertexIndicesAttr(VtValue const& value = VtValue(), bool writeSparsely = false) const;

    /// How the mesh is rounded; "none" leaves its faces flat.
    UsdAttribute CreateSubdivisionSchemeAttr(VtValue const& value = VtValue(), bool writeSparsely = false) const;

    static char const* _TypeName();
    static bool _IsTypeOf(TfToken const& typeName);

protected:
    bool _IsCompatible() const override;
};

PXR_NAMESPACE_CLOSE_SCOPE
