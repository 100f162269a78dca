// The place of a prim: one attribute each for what moves, turns and scales it, and one that lists
// them in the order in which they stand from the outside in.

#include "Diagnostics.h"
#include "LayerData.h"

#include <pxr/usd/usdGeom/xformCommonAPI.h>

PXR_NAMESPACE_OPEN_SCOPE

namespace
{

/// The names of the attributes, made once: a stage has many.
struct Names
{
    TfToken const translate{"xformOp:translate"};
    TfToken const scale{"xformOp:scale"};

    /// By RotationOrder.
    TfToken const rotate[6] = {TfToken("xformOp:rotateXYZ"), TfToken("xformOp:rotateXZY"),
                               TfToken("xformOp:rotateYXZ"), TfToken("xformOp:rotateYZX"),
                               TfToken("xformOp:rotateZXY"), TfToken("xformOp:rotateZYX")};
    TfToken const order{"xformOpOrder"};
};

Names const& names()
{
    static Names const all;
    return all;
}

// Where an operation stands in the order: moved last, scaled first.
int rankOf(TfToken const& name)
{
    return name == names().translate ? 0 : (name == names().scale ? 2 : 1);
}

}

bool UsdGeomXformCommonAPI::_IsCompatible() const
{
    return GetPrim().IsA<UsdGeomXformable>();
}

bool UsdGeomXformCommonAPI::SetTranslate(GfVec3d const& translation, UsdTimeCode const time) const
{
    return setOp(names().translate, SdfValueTypeNames->Double3, VtValue(translation), time);
}

bool UsdGeomXformCommonAPI::SetRotate(GfVec3f const& rotation, RotationOrder rotOrder, UsdTimeCode const time) const
{
    return setOp(names().rotate[rotOrder], SdfValueTypeNames->Float3, VtValue(rotation), time);
}

bool UsdGeomXformCommonAPI::SetScale(GfVec3f const& scale, UsdTimeCode const time) const
{
    return setOp(names().scale, SdfValueTypeNames->Float3, VtValue(scale), time);
}

bool UsdGeomXformCommonAPI::setOp(TfToken const& op, SdfValueTypeName const& type, VtValue const& value,
                                  UsdTimeCode time) const
{
    if (!*this)
    {
        Tf_PostError("No transform can be set on <" + GetPath().GetString() + '>');
        return false;
    }
    UsdPrim const prim = GetPrim();
    if (!prim.GetAttribute(op))
    {
        UsdAttribute const order =
            prim.CreateAttribute(names().order, SdfValueTypeNames->TokenArray, false, SdfVariabilityUniform);
        VtValue const& listed = prim._Data()->attribute(names().order)->value;
        VtTokenArray ops;
        bool isPlaced = false;
        for (TfToken const& other : listed.IsEmpty() ? VtTokenArray() : listed.UncheckedGet<VtTokenArray>())
        {
            if (rankOf(other) == rankOf(op))
            {
                Tf_PostError("Rotation order mismatch on prim <" + prim.GetPath().GetString() + "> (" + op.GetString() +
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
