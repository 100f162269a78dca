#include "FbxContent.h"

#include "FbxRecord.h"
#include "text/Clock.h"

#include <algorithm>

namespace fbxsdk
{

namespace
{

FbxMoment now()
{
    QDateTime const time = Text::exportTime();
    QDate const date = time.date();
    QTime const clock = time.time();
    return {date.year(), date.month(), date.day(), clock.hour(), clock.minute(), clock.second(), clock.msec()};
}

/// A name, or what takes its place where it is taken; in proper UTF-8 either way.
std::string take(Text::UniqueNames& names, std::string const& name)
{
    return names.take(QString::fromStdString(name)).toStdString();
}

bool isZero(FbxTimeSpan const& span)
{
    return span.GetStart() == FbxTime() && span.GetStop() == FbxTime();
}

/// A span that grows by keys.
class KeySpan
{
public:
    void add(FbxAnimCurveNode const& node)
    {
        for (unsigned int i = 0; i < node.GetChannelsCount(); ++i)
        {
            FbxAnimCurve const* const curve = node.GetCurve(i);
            if (curve && curve->KeyGetCount() > 0)
            {
                add({curve->keys().front().time, curve->keys().back().time});
            }
        }
    }

    void add(FbxTimeSpan const& more)
    {
        m_span = m_isEmpty ? more
                           : FbxTimeSpan(std::min(m_span.GetStart(), more.GetStart()),
                                         std::max(m_span.GetStop(), more.GetStop()));
        m_isEmpty = false;
    }

    FbxTimeSpan span() const
    {
        return m_span;
    }

private:
    FbxTimeSpan m_span;
    bool m_isEmpty = true;
};

}

std::string fbxFullName(std::string const& name, char const* kind)
{
    std::string result = name;
    result += '\0';
    result += '\1';
    return result += kind;
}

FbxContent::FbxContent(FbxScene& written, int version, bool animated)
    : scene(written), moment(now()), m_animated(animated)
{
    collectNodes(version);
    collectEyes();
    if (animated)
    {
        collectTakes();
    }
    KeySpan all;
    for (FbxTake const& take : takes)
    {
        all.add(take.local);
    }
    scene.GetGlobalSettings().GetTimelineDefaultTimeSpan(timeSpan);
    timeSpan = isZero(timeSpan) ? all.span() : timeSpan;
}

void FbxContent::collectNodes(int version)
{
    Text::UniqueNames names;
    Text::UniqueNames attributes;
    if (version < 7000)
    {
        take(names, "Scene"); // the root goes by it
    }
    std::vector<std::pair<FbxNode*, int>> open;
    auto const openChildren = [&](FbxNode* node, int index)
    {
        for (int i = node->GetChildCount() - 1; i >= 0; --i)
        {
            open.emplace_back(node->GetChild(i), index);
        }
    };
    openChildren(scene.GetRootNode(), -1);
    while (!open.empty())
    {
        auto const [node, parent] = open.back();
        open.pop_back();
        nodes.push_back({node, take(names, node->GetName()), parent});
        m_written.insert(node);
        if (FbxNodeAttribute const* const attribute = node->GetNodeAttribute())
        {
            m_written.insert(attribute);
            m_attributeNames[attribute] = take(attributes, nodes.back().name);
        }
        collectMaterials(node);
        openChildren(node, static_cast<int>(nodes.size()) - 1);
    }
}

void FbxContent::collectMaterials(FbxNode const* node)
{
    for (int i = 0; i < node->GetMaterialCount(); ++i)
    {
        FbxSurfaceMaterial* const material = node->GetMaterial(i);
        if (m_written.insert(material).second)
        {
            materials.push_back({material, take(m_materialNames, material->GetName())});
        }
    }
}

void FbxContent::collectEyes()
{
    Text::UniqueNames names;
    for (auto const& [attribute, name] : m_attributeNames)
    {
        take(names, name);
    }
    for (FbxWrittenNode const& written : nodes)
    {
        auto const* const rig = dynamic_cast<FbxCameraStereo const*>(written.node->GetNodeAttribute());
        for (FbxCamera* const eye : {rig ? rig->GetLeftCamera() : nullptr, rig ? rig->GetRightCamera() : nullptr})
        {
            if (eye && m_written.insert(eye).second)
            {
                looseEyes.push_back(eye);
                m_attributeNames[eye] = take(names, eye->GetName());
            }
        }
    }
}

void FbxContent::collectTakes()
{
    Text::UniqueNames names;
    for (FbxAnimStack* const stack : scene.stacks())
    {
        FbxTake written{stack, take(names, stack->GetName()), {}, {}, {}};
        KeySpan keys;
        for (int i = 0; i < stack->GetMemberCount(); ++i)
        {
            auto* const layer = dynamic_cast<FbxAnimLayer*>(stack->GetMember(i));
            if (!layer || !m_written.insert(layer).second)
            {
                continue;
            }
            written.layers.push_back(layer);
            for (FbxAnimCurveNode const* const node : curveNodes(layer))
            {
                keys.add(*node);
            }
        }
        FbxTimeSpan const reference(stack->ReferenceStart.Get(), stack->ReferenceStop.Get());
        written.local = isZero(stack->GetLocalTimeSpan()) ? keys.span() : stack->GetLocalTimeSpan();
        written.reference = isZero(reference) ? written.local : reference;
        takes.push_back(std::move(written));
    }
}

FbxLongLong FbxContent::id(FbxObject const* object)
{
    FbxLongLong& known = m_ids[object];
    if (known == 0)
    {
        known = ++m_lastId;
    }
    return known;
}

std::string FbxContent::attributeName(FbxNodeAttribute const* attribute) const
{
    bool const isMesh = attribute->GetAttributeType() == FbxNodeAttribute::eMesh;
    return fbxFullName(m_attributeNames.at(attribute), isMesh ? "Geometry" : "NodeAttribute");
}

bool FbxContent::isWritten(FbxObject const* object) const
{
    return m_written.count(object) != 0;
}

std::vector<FbxAnimCurveNode*> FbxContent::curveNodes(FbxAnimLayer const* layer) const
{
    std::vector<FbxAnimCurveNode*> result;
    for (FbxAnimCurveNode* const node : layer->curveNodes())
    {
        if (node->IsAnimated() && isWritten(node->record()->owner))
        {
            result.push_back(node);
        }
    }
    return result;
}

bool FbxContent::isAnimated(FbxPropertyRecord const& record) const
{
    if (!m_animated)
    {
        return false;
    }
    for (FbxAnimCurveNode const* node = record.curveNode; node; node = node->next())
    {
        if (node->IsAnimated() && isWritten(node->layer()))
        {
            return true;
        }
    }
    return false;
}

std::size_t FbxContent::expectedSize() const
{
    constexpr std::size_t head = 100000;
    constexpr std::size_t bytesOfNode = 2000;
    constexpr std::size_t bytesOfPoint = 64;
    std::size_t result = head + nodes.size() * bytesOfNode;
    for (FbxWrittenNode const& written : nodes)
    {
        if (FbxMesh const* const mesh = written.node->GetMesh())
        {
            auto const most = std::max(mesh->GetControlPointsCount(), mesh->GetPolygonVertexCount());
            result += static_cast<std::size_t>(most) * bytesOfPoint;
        }
    }
    return result;
}

std::string FbxContent::currentTake() const
{
    FbxAnimStack const* const current = scene.GetCurrentAnimationStack();
    for (FbxTake const& take : takes)
    {
        if (take.stack == current)
        {
            return take.name;
        }
    }
    return {};
}

}
