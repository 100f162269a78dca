#pragma once
// What a layer holds, behind specs, prims and attributes.

#include <pxr/base/vt/value.h>
#include <pxr/usd/sdf/path.h>
#include <pxr/usd/sdf/types.h>

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

PXR_NAMESPACE_OPEN_SCOPE

struct Sdf_AttributeData
{
    TfToken name;
    SdfValueTypeName type;
    bool custom = false;
    SdfVariability variability = SdfVariabilityVarying;
    TfToken interpolation;

    /// Empty for none.
    VtValue value;

    /// Ascending in time.
    std::vector<std::pair<double, VtValue>> samples;

    void setSample(double time, VtValue const& sample);
};

struct Sdf_PrimData
{
    SdfPath path;
    Sdf_PrimData* parent = nullptr;
    SdfSpecifier specifier = SdfSpecifierOver;
    TfToken typeName;

    /// In the order in which they were made.
    std::vector<Sdf_PrimData*> children;
    std::vector<Sdf_AttributeData> attributes;

    /// Whether stages know it.
    bool isNoticed = true;

    /// Null for none.
    Sdf_AttributeData* attribute(TfToken const& attributeName);
};

struct Sdf_LayerData : std::enable_shared_from_this<Sdf_LayerData>
{
    Sdf_LayerData();

    /// "/", above all prims.
    Sdf_PrimData root;
    std::map<std::string, double> numbers;
    std::map<std::string, std::string> texts;

    /// Null for none.
    Sdf_PrimData* find(SdfPath const& path);

    /// What isn't there yet is made, with all above it.
    /// @param path absolute
    Sdf_PrimData* create(SdfPath const& path);

    /// Shows stages what was made inside of a change block.
    void notice();

private:
    Sdf_PrimData* add(SdfPath const& path, Sdf_PrimData* parent);

    /// By path; the key is that of the prim itself.
    std::unordered_map<std::string_view, std::unique_ptr<Sdf_PrimData>> m_prims;
    std::vector<Sdf_PrimData*> m_unnoticed;
};

/// Whether a change block is open in this thread; the layer is noticed when it closes then.
bool Sdf_DeferNotice(Sdf_LayerData& layer);

PXR_NAMESPACE_CLOSE_SCOPE
