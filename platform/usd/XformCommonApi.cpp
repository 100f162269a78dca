// The place of a prim: one attribute each for what moves, turns and scales it, and one that lists
// them in the order in which they stand from the outside in.

#include "Diagnostics.h"
#include "LayerData.h"

#include <pxr/usd/usdGeom/xformCommonAPI.h>

PXR_NAMESPACE_OPEN_SCOPE

namespace
{

constexpr char TRANSLATE[] = "xformOp:translate";
constexpr char SCALE[] = "xformOp:scale";

/// By RotationOrder.
constexpr char const* ROTATIONS[] = {"xformOp:rotateXYZ", "xformOp:rotateXZY", "xformOp:rotateYXZ",
                                     "xformOp:rotateYZX", "xformOp:rotateZXY", "xformOp:rotateZYX"};

TfToken const& orderName()
{
    static TfToken const name("xformOpOrder");
    return name;
}

// Where an operation stands in the order: moved last, scaled first.
int rankOf(TfToken const& name)
{
    return name.GetString() == TRANSLATE ? 0 : (name.GetString() == SCALE ? 2 : 1);
}

}

bool UsdGeomXformCommonAPI::_IsCompatible() const
{
    return GetPrim().IsA<UsdGeomXformable>();
}

bool UsdGeomXformCommonAPI::SetTranslate(GfVec3d const& translation, UsdTimeCode const time) const
{
    return setOp(TRANSLATE, SdfValueTypeNames->Double3, VtValue(translation), time);
}

bool UsdGeomXformCommonAPI::SetRotate(GfVec3f const& rotation, RotationOrder rotOrder, UsdTimeCode const time) const
{
    return setOp(ROTATIONS[rotOrder], SdfValueTypeNames->Float3, VtValue(rotation), time);
}

bool UsdGeomXformCommonAPI::SetScale(GfVec3f const& scale, UsdTimeCode const time) const
{
    return setOp(SCALE, SdfValueTypeNames->Float3, VtValue(scale), time);
}

bool UsdGeomXformCommonAPI::setOp(char const* name, SdfValueTypeName const& type, VtValue const& value,
                                  UsdTimeCode time) const
{
    if (!*this)
    {
        Tf_PostError("No transform can be set on <" + GetPath().GetString() + '>');
        return false;
    }
    UsdPrim const prim = GetPrim();
    TfToken const op(name);
    if (!prim.GetAttribute(op))
    {
        UsdAttribute const order =
            prim.CreateAttribute(orderName(), SdfValueTypeNames->TokenArray, false, SdfVariabilityUniform);
        VtValue const& listed = prim._Data()->attribute(orderName())->value;
        VtTokenArray ops;
        bool isPlaced = false;
        for (TfToken const& other : listed.IsEmpty() ? VtTokenArray() : listed.UncheckedGet<VtTokenArray>())
        {
            if (rankOf(other) == rankOf(op))
            {
                Tf_PostError("Rotation order mismatch on prim <" + prim.GetPath().GetString() + "> (" + name +
                             " != " + other.GetString() + ')');
                return false;
            }
            if (!isPlaced && rankOf(op) < rankOf(other))
            {
                ops.push_back(op);
                isPlaced = true;
            }
            ops.push_back(other);
        }
        if (!isPlaced)
        {
            ops.push_back(op);
        }
        prim.CreateAttribute(op, type, false);
        order.Set(ops);
    }
    return prim.GetAttribute(op).Set(value, time);
}

PXR_NAMESPACE_CLOSE_SCOPE
