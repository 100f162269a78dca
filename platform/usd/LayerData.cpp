#include "LayerData.h"

#include <pxr/usd/sdf/changeBlock.h>

#include <algorithm>

PXR_NAMESPACE_OPEN_SCOPE

namespace
{

thread_local int s_openBlocks = 0;
thread_local std::vector<std::weak_ptr<Sdf_LayerData>> s_changedLayers;

}

SdfChangeBlock::SdfChangeBlock()
{
    ++s_openBlocks;
}

SdfChangeBlock::~SdfChangeBlock()
{
    if (--s_openBlocks > 0)
    {
        return;
    }
    for (std::weak_ptr<Sdf_LayerData> const& changed : std::exchange(s_changedLayers, {}))
    {
        if (auto const layer = changed.lock())
        {
            layer->notice();
        }
    }
}

bool Sdf_DeferNotice(Sdf_LayerData& layer)
{
    if (s_openBlocks == 0)
    {
        return false;
    }
    if (s_changedLayers.empty() || s_changedLayers.back().lock().get() != &layer)
    {
        s_changedLayers.push_back(layer.weak_from_this());
    }
    return true;
}

// Samples come in the order of time nearly always.
void Sdf_AttributeData::setSample(double time, VtValue const& sample)
{
    if (samples.empty() || samples.back().first < time)
    {
        samples.emplace_back(time, sample);
        return;
    }
    auto const at = std::lower_bound(samples.begin(), samples.end(), time,
                                     [](auto const& entry, double wanted) { return entry.first < wanted; });
    if (at->first == time)
    {
        at->second = sample;
    }
    else
    {
        samples.insert(at, {time, sample});
    }
}

Sdf_AttributeData* Sdf_PrimData::attribute(TfToken const& attributeName)
{
    auto const found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](Sdf_AttributeData const& data) { return data.name == attributeName; });
    return found != attributes.end() ? &*found : nullptr;
}

Sdf_LayerData::Sdf_LayerData()
{
    root.path = SdfPath::AbsoluteRootPath();
    root.specifier = SdfSpecifierDef;
}

Sdf_PrimData* Sdf_LayerData::find(SdfPath const& path)
{
    if (path == root.path)
    {
        return &root;
    }
    auto const found = m_prims.find(path.GetString());
    return found != m_prims.end() ? found->second.get() : nullptr;
}

// From the nearest ancestor that is there, downwards.
Sdf_PrimData* Sdf_LayerData::create(SdfPath const& path)
{
    std::vector<SdfPath> missing;
    SdfPath at = path;
    Sdf_PrimData* prim = find(at);
    for (; !prim; prim = find(at))
    {
        missing.push_back(at);
        at = at.GetParentPath();
    }
    for (auto it = missing.rbegin(); it != missing.rend(); ++it)
    {
        prim = add(*it, prim);
    }
    return prim;
}

Sdf_PrimData* Sdf_LayerData::add(SdfPath const& path, Sdf_PrimData* parent)
{
    auto prim = std::make_unique<Sdf_PrimData>();
    prim->path = path;
    prim->parent = parent;
    parent->children.push_back(prim.get());
    if (Sdf_DeferNotice(*this))
    {
        prim->isNoticed = false;
        m_unnoticed.push_back(prim.get());
    }
    std::string_view const key = prim->path.GetString();
    return m_prims.emplace(key, std::move(prim)).first->second.get();
}

void Sdf_LayerData::notice()
{
    for (Sdf_PrimData* const prim : m_unnoticed)
    {
        prim->isNoticed = true;
    }
    m_unnoticed.clear();
}

PXR_NAMESPACE_CLOSE_SCOPE
