#pragma once

#include <pxr/base/vt/value.h>
#include <pxr/usd/sdf/layer.h>
#include <pxr/usd/usd/timeCode.h>

PXR_NAMESPACE_OPEN_SCOPE

/// A value of a prim, over time or not. Invalid until it was created.
class MARLO_USD_API UsdAttribute
{
public:
    UsdAttribute() = default;

    bool IsValid() const;

    explicit operator bool() const
    {
        return IsValid();
    }

    TfToken const& GetName() const
    {
        return m_name;
    }

    /// False, and an error, when the value hasn't exactly the type of the attribute: a double is no
    /// value for a float.
    bool Set(VtValue const& value, UsdTimeCode time = UsdTimeCode::Default()) const;

    template <typename T>
    bool Set(T const& value, UsdTimeCode time = UsdTimeCode::Default()) const
    {
        return Set(VtValue(value), time);
    }

    /// Not part of the real one.
    UsdAttribute(std::weak_ptr<Sdf_LayerData> layer, Sdf_PrimData* prim, TfToken name)
        : m_layer(std::move(layer)), m_prim(prim), m_name(std::move(name))
    {
    }

    bool _SetInterpolation(TfToken const& interpolation) const;

private:
    std::weak_ptr<Sdf_LayerData> m_layer;
    Sdf_PrimData* m_prim = nullptr;
    TfToken m_name;
};

PXR_NAMESPACE_CLOSE_SCOPE
