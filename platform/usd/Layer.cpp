// Layers and their specs.

#include "Diagnostics.h"
#include "LayerData.h"

#include <pxr/usd/sdf/layer.h>

PXR_NAMESPACE_OPEN_SCOPE

namespace
{

// The index of a type in VtValue::Storage.
template <typename T>
std::size_t indexOf()
{
    return VtValue(T())._Storage().index();
}

}

TfToken SdfValueTypeName::GetAsToken() const
{
    return TfToken(m_text ? m_text : "");
}

SdfValueTypeNamesType const* Sdf_ValueTypeNames::operator->() const
{
    static SdfValueTypeNamesType const names{
        {"float", indexOf<float>()},           {"token", indexOf<TfToken>()},
        {"float2", indexOf<GfVec2f>()},        {"float3", indexOf<GfVec3f>()},
        {"double3", indexOf<GfVec3d>()},       {"int[]", indexOf<VtIntArray>()},
        {"token[]", indexOf<VtTokenArray>()},  {"texCoord2f[]", indexOf<VtVec2fArray>()},
        {"float3[]", indexOf<VtVec3fArray>()}, {"point3f[]", indexOf<VtVec3fArray>()},
    };
    return &names;
}

Sdf_ValueTypeNames const SdfValueTypeNames;

SdfPath SdfPrimSpec::GetPath() const
{
    return m_data->path;
}

SdfSpecifier SdfPrimSpec::GetSpecifier() const
{
    return m_data->specifier;
}

void SdfPrimSpec::SetSpecifier(SdfSpecifier specifier)
{
    m_data->specifier = specifier;
}

TfToken SdfPrimSpec::GetTypeName() const
{
    return m_data->typeName;
}

void SdfPrimSpec::SetTypeName(std::string const& typeName)
{
    m_data->typeName = TfToken(typeName);
}

SdfPrimSpecHandle SdfCreatePrimInLayer(TfWeakPtr<SdfLayer> const& layer, SdfPath const& primPath)
{
    if (!layer || primPath.IsEmpty())
    {
        Tf_PostError("Cannot create prim at path '" + primPath.GetString() + "'");
        return SdfPrimSpecHandle();
    }
    SdfPath const path = primPath.IsAbsolutePath() ? primPath : SdfPath::AbsoluteRootPath().AppendPath(primPath);
    return SdfPrimSpecHandle(SdfPrimSpec(layer->_Data()->create(path)));
}

SdfLayer::SdfLayer() : m_data(std::make_shared<Sdf_LayerData>())
{
}

SdfLayer::~SdfLayer() = default;

SdfPrimSpecHandle SdfLayer::GetPrimAtPath(SdfPath const& path)
{
    return SdfPrimSpecHandle(SdfPrimSpec(m_data->find(path)));
}

std::string SdfLayer::GetDocumentation() const
{
    auto const found = m_data->texts.find("doc");
    return found != m_data->texts.end() ? found->second : std::string();
}

void SdfLayer::SetDocumentation(std::string const& documentation)
{
    m_data->texts["doc"] = documentation;
}

PXR_NAMESPACE_CLOSE_SCOPE
