#pragma once

#include <pxr/usd/usd/attribute.h>

PXR_NAMESPACE_OPEN_SCOPE

/// A value over the surface of something.
class MARLO_USD_API UsdGeomPrimvar
{
public:
    UsdGeomPrimvar() = default;

    explicit UsdGeomPrimvar(UsdAttribute const& attribute) : m_attribute(attribute)
    {
    }

    explicit operator bool() const
    {
        return m_attribute.IsValid();
    }

    UsdAttribute const& GetAttr() const
    {
        return m_attribute;
    }

    /// As UsdAttribute::Set.
    template <typename T>
    bool Set(T const& value, UsdTimeCode time = UsdTimeCode::Default()) const
    {
        return m_attribute.Set(value, time);
    }

    /// @return false, and an error, for a word that isn't one of "constant", "uniform", "varying",
    ///         "vertex" and "faceVarying"
    bool SetInterpolation(TfToken const& interpolation);

private:
    UsdAttribute m_attribute;
};

PXR_NAMESPACE_CLOSE_SCOPE
