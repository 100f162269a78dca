#pragma once

#include <pxr/usd/usdGeom/xformable.h>

PXR_NAMESPACE_OPEN_SCOPE

/// A camera that looks along its -z axis, y up. Lengths of film and lens are tenths of a scene unit.
class MARLO_USD_API UsdGeomCamera : public UsdGeomXformable
{
public:
    explicit UsdGeomCamera(UsdPrim const& prim = UsdPrim()) : UsdGeomXformable(prim)
    {
    }

    static UsdGeomCamera Define(UsdStagePtr const& stage, SdfPath const& path);

    // Each makes its attribute where there is none. An empty value sets nothing; float, but for the
    // range, which is two floats.
    UsdAttribute CreateFocalLengthAttr(VtValue const& value = VtValue(), bool writeSparsely = false) const;
    UsdAttribute CreateHorizontalApertureAttr(VtValue const& value = VtValue(), bool writeSparsely = false) const;
    UsdAttribute CreateVerticalApertureAttr(VtValue const& value = VtValue(), bool writeSparsely = false) const;
    UsdAttribute CreateClippingRangeAttr(VtValue const& value = VtValue(), bool writeSparsely = false) const;

    static char const* _TypeName();
    static bool _IsTypeOf(TfToken const& typeName);

protected:
    bool _IsCompatible() const override;
};

PXR_NAMESPACE_CLOSE_SCOPE
