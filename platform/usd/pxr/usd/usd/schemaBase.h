#pragma once

#include <pxr/usd/usd/stage.h>

PXR_NAMESPACE_OPEN_SCOPE

/// A prim, seen as one of a type.
class MARLO_USD_API UsdSchemaBase
{
public:
    explicit UsdSchemaBase(UsdPrim const& prim = UsdPrim()) : m_prim(prim)
    {
    }

    virtual ~UsdSchemaBase();

    UsdPrim GetPrim() const
    {
        return m_prim;
    }

    SdfPath GetPath() const
    {
        return m_prim.GetPath();
    }

    /// Whether the prim is valid and can be seen so.
    explicit operator bool() const
    {
        return m_prim.IsValid() && _IsCompatible();
    }

protected:
    virtual bool _IsCompatible() const;

    /// @param value may be empty
    UsdAttribute _CreateAttr(char const* name, SdfValueTypeName const& typeName, VtValue const& value,
                             SdfVariability variability = SdfVariabilityVarying) const;

private:
    UsdPrim m_prim;
};

PXR_NAMESPACE_CLOSE_SCOPE
