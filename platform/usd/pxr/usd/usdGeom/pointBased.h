#pragma once

#include <pxr/usd/usdGeom/xformable.h>

PXR_NAMESPACE_OPEN_SCOPE

/// Geometry that is made of points.
class MARLO_USD_API UsdGeomPointBased : public UsdGeomXformable
{
public:
    explicit UsdGeomPointBased(UsdPrim const& prim = UsdPrim()) : UsdGeomXformable(prim)
    {
    }

    UsdAttribute CreatePointsAttr(VtValue const& value = VtValue(), bool writeSparsely = false) const;

    /// The two corners of the box around the points.
    UsdAttribute CreateExtentAttr(VtValue const& value = VtValue(), bool writeSparsely = false) const;

    /// False when there are no points.
    static bool ComputeExtent(VtVec3fArray const& points, VtVec3fArray* extent);
};

PXR_NAMESPACE_CLOSE_SCOPE
