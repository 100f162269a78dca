#pragma once

#include <pxr/base/gf/vec3d.h>
#include <pxr/base/gf/vec3f.h>
#include <pxr/usd/usdGeom/xformable.h>

PXR_NAMESPACE_OPEN_SCOPE

/// The place of a prim as position, angles and factors: scaled first, then turned, then moved.
class MARLO_USD_API UsdGeomXformCommonAPI : public UsdSchemaBase
{
public:
    /// The axes in the order in which they are turned about; all are static ones.
    enum RotationOrder
    {
        RotationOrderXYZ,
        RotationOrderXZY,
        RotationOrderYXZ,
        RotationOrderYZX,
        RotationOrderZXY,
        RotationOrderZYX
    };

    explicit UsdGeomXformCommonAPI(UsdPrim const& prim = UsdPrim()) : UsdSchemaBase(prim)
    {
    }

    explicit UsdGeomXformCommonAPI(UsdSchemaBase const& schema) : UsdSchemaBase(schema.GetPrim())
    {
    }

    // False, and an error, for a prim that has no place.

    bool SetTranslate(GfVec3d const& translation, UsdTimeCode const time = UsdTimeCode::Default()) const;

    /// @param rotation degrees
    /// @param rotOrder that of the first call stays; false, and an error, for another one later
    bool SetRotate(GfVec3f const& rotation, RotationOrder rotOrder = RotationOrderXYZ,
                   UsdTimeCode const time = UsdTimeCode::Default()) const;
    bool SetScale(GfVec3f const& scale, UsdTimeCode const time = UsdTimeCode::Default()) const;

protected:
    bool _IsCompatible() const override;

private:
    bool setOp(TfToken const& op, SdfValueTypeName const& type, VtValue const& value, UsdTimeCode time) const;
};

PXR_NAMESPACE_CLOSE_SCOPE
