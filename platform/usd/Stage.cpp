// Stages, prims and their attributes.

#include "Diagnostics.h"
#include "LayerData.h"

#include <pxr/usd/usd/stage.h>

#include <algorithm>

PXR_NAMESPACE_OPEN_SCOPE

namespace
{

constexpr double USUAL_RATE = 24.0;

double numberOr(Sdf_LayerData const& layer, char const* name, double otherwise)
{
    auto const found = layer.numbers.find(name);
    return found != layer.numbers.end() ? found->second : otherwise;
}

// The text of the type that a value would have as an attribute.
char const* nameOf(VtValue const& value)
{
    constexpr char const* NAMES[] = {
        "void",    "int",     "float",        "double",           "TfToken",          "GfVec2f",
        "GfVec3f", "GfVec3d", "VtArray<int>", "VtArray<TfToken>", "VtArray<GfVec2f>", "VtArray<GfVec3f>"};
    return NAMES[value._Storage().index()];
}

}

bool UsdAttribute::IsValid() const
{
    return !m_layer.expired() && m_prim && m_prim->attribute(m_name);
}

bool UsdAttribute::Set(VtValue const& value, UsdTimeCode time) const
{
    Sdf_AttributeData* const data = m_layer.expired() || !m_prim ? nullptr : m_prim->attribute(m_name);
    if (!data)
    {
        Tf_PostError("Set of an invalid attribute '" + m_name.GetString() + "'");
        return false;
    }
    if (value._Storage().index() != data->type._Holding())
    {
        Tf_PostError("Type mismatch for <" + m_prim->path.GetString() + '.' + m_name.GetString() + ">: expected '" +
                     data->type._Text() + "', got '" + nameOf(value) + '\'');
        return false;
    }
    if (time.IsDefault())
    {
        data->value = value;
    }
    else
    {
        data->setSample(time.GetValue(), value);
    }
    return true;
}

bool UsdAttribute::_SetInterpolation(TfToken const& interpolation) const
{
    if (!IsValid())
    {
        return false;
    }
    m_prim->attribute(m_name)->interpolation = interpolation;
    return true;
}

bool UsdPrim::IsValid() const
{
    return !m_layer.expired() && m_data && m_data->isNoticed;
}

bool UsdPrim::IsDefined() const
{
    bool isDefined = IsValid();
    for (Sdf_PrimData const* prim = m_data; isDefined && prim; prim = prim->parent)
    {
        isDefined = prim->specifier == SdfSpecifierDef;
    }
    return isDefined;
}

SdfPath UsdPrim::GetPath() const
{
    return IsValid() ? m_data->path : SdfPath();
}

TfToken UsdPrim::GetTypeName() const
{
    return IsValid() ? m_data->typeName : TfToken();
}

UsdAttribute UsdPrim::GetAttribute(TfToken const& name) const
{
    return UsdAttribute(m_layer, IsValid() ? m_data : nullptr, name);
}

UsdAttribute UsdPrim::CreateAttribute(TfToken const& name, SdfValueTypeName const& typeName, bool custom,
                                      SdfVariability variability) const
{
    if (!IsValid())
    {
        Tf_PostError("Cannot create attribute '" + name.GetString() + "' of an invalid prim");
        return UsdAttribute();
    }
    if (!m_data->attribute(name))
    {
        Sdf_AttributeData data;
        data.name = name;
        data.type = typeName;
        data.custom = custom;
        data.variability = variability;
        m_data->attributes.push_back(std::move(data));
    }
    return UsdAttribute(m_layer, m_data, name);
}

UsdStage::UsdStage() : m_layer(std::make_shared<SdfLayer>())
{
}

UsdStageRefPtr UsdStage::CreateInMemory()
{
    return UsdStageRefPtr(std::shared_ptr<UsdStage>(new UsdStage));
}

SdfLayerHandle UsdStage::GetRootLayer() const
{
    return m_layer;
}

UsdPrim UsdStage::GetPrimAtPath(SdfPath const& path) const
{
    return UsdPrim(m_layer->_Data(), m_layer->_Data()->find(path));
}

UsdPrim UsdStage::DefinePrim(SdfPath const& path, TfToken const& typeName)
{
    if (!path.IsAbsolutePath())
    {
        Tf_PostError("Path must be an absolute path: <" + path.GetString() + '>');
        return UsdPrim();
    }
    Sdf_PrimData* const prim = m_layer->_Data()->create(path);
    for (Sdf_PrimData* above = prim; above; above = above->parent)
    {
        above->specifier = SdfSpecifierDef;
    }
    if (!typeName.IsEmpty())
    {
        prim->typeName = typeName;
    }
    UsdPrim const defined(m_layer->_Data(), prim);
    if (!defined)
    {
        Tf_PostError("Failed to define UsdPrim <" + path.GetString() + '>');
    }
    return defined;
}

UsdPrim UsdStage::GetDefaultPrim() const
{
    auto const& texts = m_layer->_Data()->texts;
    auto const found = texts.find("defaultPrim");
    if (found == texts.end())
    {
        return UsdPrim();
    }
    return GetPrimAtPath(SdfPath(found->second[0] == '/' ? found->second : '/' + found->second));
}

// A prim at the top is known by its name, one further down by its path.
void UsdStage::SetDefaultPrim(UsdPrim const& prim)
{
    SdfPath const path = prim.GetPath();
    bool const isAtTop = path.GetParentPath() == SdfPath::AbsoluteRootPath();
    m_layer->_Data()->texts["defaultPrim"] = isAtTop ? path.GetName() : path.GetString();
}

double UsdStage::GetStartTimeCode() const
{
    return numberOr(*m_layer->_Data(), "startTimeCode", 0.0);
}

void UsdStage::SetStartTimeCode(double time)
{
    m_layer->_Data()->numbers["startTimeCode"] = time;
}

double UsdStage::GetEndTimeCode() const
{
    return numberOr(*m_layer->_Data(), "endTimeCode", 0.0);
}

void UsdStage::SetEndTimeCode(double time)
{
    m_layer->_Data()->numbers["endTimeCode"] = time;
}

double UsdStage::GetTimeCodesPerSecond() const
{
    return numberOr(*m_layer->_Data(), "timeCodesPerSecond", GetFramesPerSecond());
}

void UsdStage::SetTimeCodesPerSecond(double rate) const
{
    m_layer->_Data()->numbers["timeCodesPerSecond"] = rate;
}

double UsdStage::GetFramesPerSecond() const
{
    return numberOr(*m_layer->_Data(), "framesPerSecond", USUAL_RATE);
}

void UsdStage::SetFramesPerSecond(double rate) const
{
    m_layer->_Data()->numbers["framesPerSecond"] = rate;
}

PXR_NAMESPACE_CLOSE_SCOPE
