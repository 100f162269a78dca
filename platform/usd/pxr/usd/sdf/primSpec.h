#pragma once

#include <pxr/base/tf/weakPtr.h>
#include <pxr/usd/sdf/path.h>
#include <pxr/usd/sdf/types.h>

#include <string>

PXR_NAMESPACE_OPEN_SCOPE

class SdfLayer;
struct Sdf_PrimData;

/// What a layer says about a prim.
class MARLO_USD_API SdfPrimSpec
{
public:
    SdfPath GetPath() const;
    SdfSpecifier GetSpecifier() const;
    void SetSpecifier(SdfSpecifier specifier);
    TfToken GetTypeName() const;
    void SetTypeName(std::string const& typeName);

    /// Not part of the real one.
    explicit SdfPrimSpec(Sdf_PrimData* data = nullptr) : m_data(data)
    {
    }

    Sdf_PrimData* _Data() const
    {
        return m_data;
    }

private:
    Sdf_PrimData* m_data;
};

/// Points at a spec; valid as long as the layer lives.
template <typename Spec>
class SdfHandle
{
public:
    SdfHandle() = default;

    /// Not part of the real one.
    explicit SdfHandle(Spec const& spec) : m_spec(spec)
    {
    }

    Spec* operator->() const
    {
        return &m_spec;
    }

    explicit operator bool() const
    {
        return m_spec._Data() != nullptr;
    }

private:
    mutable Spec m_spec;
};

using SdfPrimSpecHandle = SdfHandle<SdfPrimSpec>;

/// The spec of that path; where there is none, it and those above are made, as "over" and without
/// a type.
MARLO_USD_API SdfPrimSpecHandle SdfCreatePrimInLayer(TfWeakPtr<SdfLayer> const& layer, SdfPath const& primPath);

PXR_NAMESPACE_CLOSE_SCOPE
