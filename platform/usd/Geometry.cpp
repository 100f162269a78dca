// The types of geometry and what can be set on them.

#include "Diagnostics.h"
#include "LayerData.h"

#include <pxr/usd/usdGeom/camera.h>
#include <pxr/usd/usdGeom/mesh.h>
#include <pxr/usd/usdGeom/metrics.h>
#include <pxr/usd/usdGeom/primvarsAPI.h>
#include <pxr/usd/usdGeom/tokens.h>
#include <pxr/usd/usdGeom/xform.h>

#include <algorithm>

PXR_NAMESPACE_OPEN_SCOPE

namespace
{

template <typename Schema>
UsdPrim define(UsdStagePtr const& stage, SdfPath const& path)
{
    if (!stage)
    {
        Tf_PostError("Invalid stage");
        return UsdPrim();
    }
    return stage->DefinePrim(path, TfToken(Schema::_TypeName()));
}

}

UsdGeomTokensType const* UsdGeom_Tokens::operator->() const
{
    static UsdGeomTokensType const tokens;
    return &tokens;
}

UsdGeom_Tokens const UsdGeomTokens;

UsdSchemaBase::~UsdSchemaBase() = default;

bool UsdSchemaBase::_IsCompatible() const
{
    return true;
}

UsdAttribute UsdSchemaBase::_CreateAttr(char const* name, SdfValueTypeName const& typeName, VtValue const& value,
                                        SdfVariability variability) const
{
    UsdAttribute const attribute = m_prim.CreateAttribute(TfToken(name), typeName, false, variability);
    if (attribute && !value.IsEmpty())
    {
        attribute.Set(value);
    }
    return attribute;
}

bool UsdGeomXformable::_IsTypeOf(TfToken const& typeName)
{
    return UsdGeomXform::_IsTypeOf(typeName) || UsdGeomCamera::_IsTypeOf(typeName) || UsdGeomMesh::_IsTypeOf(typeName);
}

bool UsdGeomXformable::_IsCompatible() const
{
    return GetPrim().IsA<UsdGeomXformable>();
}

UsdGeomXform UsdGeomXform::Define(UsdStagePtr const& stage, SdfPath const& path)
{
    return UsdGeomXform(define<UsdGeomXform>(stage, path));
}

char const* UsdGeomXform::_TypeName()
{
    return "Xform";
}

bool UsdGeomXform::_IsTypeOf(TfToken const& typeName)
{
    return typeName.GetString() == _TypeName();
}

bool UsdGeomXform::_IsCompatible() const
{
    return GetPrim().IsA<UsdGeomXform>();
}

UsdGeomCamera UsdGeomCamera::Define(UsdStagePtr const& stage, SdfPath const& path)
{
    return UsdGeomCamera(define<UsdGeomCamera>(stage, path));
}

UsdAttribute UsdGeomCamera::CreateFocalLengthAttr(VtValue const& value, bool) const
{
    return _CreateAttr("focalLength", SdfValueTypeNames->Float, value);
}

UsdAttribute UsdGeomCamera::CreateHorizontalApertureAttr(VtValue const& value, bool) const
{
    return _CreateAttr("horizontalAperture", SdfValueTypeNames->Float, value);
}

UsdAttribute UsdGeomCamera::CreateVerticalApertureAttr(VtValue const& value, bool) const
{
    return _CreateAttr("verticalAperture", SdfValueTypeNames->Float, value);
}

UsdAttribute UsdGeomCamera::CreateClippingRangeAttr(VtValue const& value, bool) const
{
    return _CreateAttr("clippingRange", SdfValueTypeNames->Float2, value);
}

char const* UsdGeomCamera::_TypeName()
{
    return "Camera";
}

bool UsdGeomCamera::_IsTypeOf(TfToken const& typeName)
{
    return typeName.GetString() == _TypeName();
}

bool UsdGeomCamera::_IsCompatible() const
{
    return GetPrim().IsA<UsdGeomCamera>();
}

UsdAttribute UsdGeomPointBased::CreatePointsAttr(VtValue const& value, bool) const
{
    return _CreateAttr("points", SdfValueTypeNames->Point3fArray, value);
}

UsdAttribute UsdGeomPointBased::CreateExtentAttr(VtValue const& value, bool) const
{
    return _CreateAttr("extent", SdfValueTypeNames->Float3Array, value);
}

bool UsdGeomPointBased::ComputeExtent(VtVec3fArray const& points, VtVec3fArray* extent)
{
    if (points.empty())
    {
        return false;
    }
    GfVec3f low = *points.begin();
    GfVec3f high = low;
    for (GfVec3f const& point : points)
    {
        for (std::size_t axis = 0; axis < GfVec3f::dimension; ++axis)
        {
            low[axis] = std::min(low[axis], point[axis]);
            high[axis] = std::max(high[axis], point[axis]);
        }
    }
    *extent = {low, high};
    return true;
}

UsdGeomMesh UsdGeomMesh::Define(UsdStagePtr const& stage, SdfPath const& path)
{
    return UsdGeomMesh(define<UsdGeomMesh>(stage, path));
}

UsdAttribute UsdGeomMesh::CreateFaceVertexCountsAttr(VtValue const& value, bool) const
{
    return _CreateAttr("faceVertexCounts", SdfValueTypeNames->IntArray, value);
}

UsdAttribute UsdGeomMesh::CreateFaceVertexIndicesAttr(VtValue const& value, bool) const
{
    return _CreateAttr("faceVertexIndices", SdfValueTypeNames->IntArray, value);
}

UsdAttribute UsdGeomMesh::CreateSubdivisionSchemeAttr(VtValue const& value, bool) const
{
    return _CreateAttr("subdivisionScheme", SdfValueTypeNames->Token, value, SdfVariabilityUniform);
}

char const* UsdGeomMesh::_TypeName()
{
    return "Mesh";
}

bool UsdGeomMesh::_IsTypeOf(TfToken const& typeName)
{
    return typeName.GetString() == _TypeName();
}

bool UsdGeomMesh::_IsCompatible() const
{
    return GetPrim().IsA<UsdGeomMesh>();
}

bool UsdGeomPrimvar::SetInterpolation(TfToken const& interpolation)
{
    constexpr char const* WORDS[] = {"constant", "uniform", "varying", "vertex", "faceVarying"};
    if (std::find(std::begin(WORDS), std::end(WORDS), interpolation.GetString()) == std::end(WORDS))
    {
        Tf_PostError("Attempt to set invalid primvar interpolation \"" + interpolation.GetString() + '"');
        return false;
    }
    return m_attribute._SetInterpolation(interpolation);
}

UsdGeomPrimvar UsdGeomPrimvarsAPI::CreatePrimvar(TfToken const& name, SdfValueTypeName const& typeName,
                                                 TfToken const& interpolation, int) const
{
    UsdGeomPrimvar primvar(GetPrim().CreateAttribute(TfToken("primvars:" + name.GetString()), typeName, false));
    if (primvar && !interpolation.IsEmpty())
    {
        primvar.SetInterpolation(interpolation);
    }
    return primvar;
}

bool UsdGeomSetStageUpAxis(UsdStageWeakPtr const& stage, TfToken const& axis)
{
    if (!stage || (axis != UsdGeomTokens->y && axis != UsdGeomTokens->z))
    {
        Tf_PostError("UsdStage upAxis can only be set to \"Y\" or \"Z\", not attempted \"" + axis.GetString() + '"');
        return false;
    }
    stage->GetRootLayer()->_Data()->texts["upAxis"] = axis.GetString();
    return true;
}

bool UsdGeomSetStageMetersPerUnit(UsdStageWeakPtr const& stage, double metersPerUnit)
{
    if (!stage)
    {
        Tf_PostError("Invalid stage");
        return false;
    }
    stage->GetRootLayer()->_Data()->numbers["metersPerUnit"] = metersPerUnit;
    return true;
}

PXR_NAMESPACE_CLOSE_SCOPE
