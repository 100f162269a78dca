#pragma once

#include <pxr/usd/usd/attribute.h>

PXR_NAMESPACE_OPEN_SCOPE

/// A prim of a stage. Invalid when there is none, when the stage hasn't noticed it yet, and when
/// the stage is gone.
class MARLO_USD_API UsdPrim
{
public:
    UsdPrim() = default;

    bool IsValid() const;

    explicit operator bool() const
    {
        return IsValid();
    }

    /// Whether it and all above it are more than "over".
    bool IsDefined() const;
    SdfPath GetPath() const;
    TfToken GetTypeName() const;

    /// Whether it has the type, or one that builds on it: all of geometry but a stage's root can
    /// be transformed.
    template <typename Schema>
    bool IsA() const
    {
        return IsValid() && Schema::_IsTypeOf(GetTypeName());
    }

    /// Invalid for one that wasn't created.
    UsdAttribute GetAttribute(TfToken const& name) const;

    /// An attribute that was there is kept as it is.
    UsdAttribute CreateAttribute(TfToken const& name, SdfValueTypeName const& typeName, bool custom,
                                 SdfVariability variability = SdfVariabilityVarying) const;

    /// Not part of the real one.
    UsdPrim(std::weak_ptr<Sdf_LayerData> layer, Sdf_PrimData* data) : m_layer(std::move(layer)), m_data(data)
    {
    }

    Sdf_PrimData* _Data() const
    {
        return m_data;
    }

private:
    std::weak_ptr<Sdf_LayerData> m_layer;
    Sdf_PrimData* m_data = nullptr;
};

PXR_NAMESPACE_CLOSE_SCOPE
