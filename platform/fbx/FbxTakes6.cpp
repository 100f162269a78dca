// The animation of version 6.1: takes, in them nodes by their names, in these channels, and in a channel
// all keys as one list.

#include "FbxParts.h"

#include <algorithm>
#include <cstring>
#include <unordered_map>
#include <unordered_set>

namespace fbxsdk
{

namespace
{

constexpr int keyVersion = 4005;
constexpr double takeModelVersion = 1.1;

class Takes6 : FbxParts
{
public:
    using FbxParts::FbxParts;

    void takes();

private:
    /// What curves drive of one object, in the order of their making.
    using CurveNodes = std::vector<FbxAnimCurveNode const*>;

    void take(FbxTake const& take);
    void transform(CurveNodes const& nodes);
    void curveNode(FbxAnimCurveNode const& node, char const* name, int layerType);
    void channel(FbxAnimCurveNode const& node, int index);
    void key(std::vector<FbxAnimCurveKey> const& keys, std::size_t index);
};

void Takes6::takes()
{
    m_out.open("Takes");
    m_out.leaf("Current", m_content.currentTake());
    for (FbxTake const& one : m_content.takes)
    {
        take(one);
    }
    m_out.close();
}

void Takes6::take(FbxTake const& take)
{
    // Curves by the node they belong to. A property that more than one layer drives has the
    // curves of the first: takes have no layers.
    std::unordered_map<FbxObject const*, CurveNodes> curves;
    std::unordered_set<FbxPropertyRecord const*> known;
    for (FbxAnimLayer const* const layer : take.layers)
    {
        for (FbxAnimCurveNode const* const node : m_content.curveNodes(layer))
        {
            if (known.insert(node->record()).second)
            {
                curves[node->record()->owner].push_back(node);
            }
        }
    }
    m_out.open("Take", take.name);
    takeHead(take);
    auto const object = [&](std::string const& name, FbxObject const* node, FbxObject const* attribute)
    {
        auto const ofNode = curves.find(node);
        auto const ofItsAttribute = curves.find(attribute);
        if (ofNode == curves.end() && ofItsAttribute == curves.end())
        {
            return;
        }
        m_out.open("Model", name);
        m_out.leaf("Version", takeModelVersion);
        if (ofNode != curves.end())
        {
            transform(ofNode->second);
        }
        for (FbxAnimCurveNode const* const one : ofItsAttribute != curves.end() ? ofItsAttribute->second : CurveNodes())
        {
            curveNode(*one, one->GetName(), 0);
        }
        m_out.close();
    };
    for (FbxWrittenNode const& written : m_content.nodes)
    {
        object(fbxModelName(written), written.node, written.node->GetNodeAttribute());
    }
    for (FbxCamera const* const eye : m_content.looseEyes)
    {
        object(m_content.attributeName(eye), nullptr, eye);
    }
    m_out.close();
}

void Takes6::transform(CurveNodes const& nodes)
{
    constexpr char const* parts[] = {FBXSDK_CURVENODE_TRANSLATION, FBXSDK_CURVENODE_ROTATION, FBXSDK_CURVENODE_SCALING};
    auto const named = [&](char const* name) -> FbxAnimCurveNode const*
    {
        auto const found =
            std::find_if(nodes.begin(), nodes.end(),
                         [&](FbxAnimCurveNode const* node) { return std::strcmp(node->GetName(), name) == 0; });
        return found == nodes.end() ? nullptr : *found;
    };
    if (named(parts[0]) || named(parts[1]) || named(parts[2]))
    {
        m_out.open("Channel", "Transform");
        for (int i = 0; i < 3; ++i)
        {
            if (FbxAnimCurveNode const* const node = named(parts[i]))
            {
                curveNode(*node, parts[i], i + 1);
            }
        }
        m_out.close();
    }
    for (FbxAnimCurveNode const* const node : nodes)
    {
        if (std::none_of(std::begin(parts), std::end(parts),
                         [&](char const* part) { return std::strcmp(node->GetName(), part) == 0; }))
        {
            curveNode(*node, node->GetName(), 0);
        }
    }
}

void Takes6::curveNode(FbxAnimCurveNode const& node, char const* name, int layerType)
{
    m_out.open("Channel", name);
    if (node.GetChannelsCount() == 1)
    {
        channel(node, 0);
    }
    for (int i = 0; node.GetChannelsCount() > 1 && i < static_cast<int>(node.GetChannelsCount()); ++i)
    {
        m_out.open("Channel", node.GetChannelName(i).Buffer());
        channel(node, i);
        m_out.close();
    }
    if (layerType > 0)
    {
        m_out.leaf("LayerType", layerType);
    }
    m_out.close();
}

void Takes6::channel(FbxAnimCurveNode const& node, int index)
{
    FbxAnimCurve const* const curve = node.GetCurve(static_cast<unsigned int>(index));
    m_out.leaf("Default", node.record()->numbers[index]);
    if (curve && curve->KeyGetCount() > 0)
    {
        m_out.leaf("KeyVer", keyVersion);
        m_out.leaf("KeyCount", curve->KeyGetCount());
        m_out.beginLeaf("Key");
        for (std::size_t i = 0; i < curve->keys().size(); ++i)
        {
            key(curve->keys(), i);
        }
        m_out.endLeaf();
    }
    m_out.leaf("Color", 1.0, 1.0, 1.0);
}

void Takes6::key(std::vector<FbxAnimCurveKey> const& keys, std::size_t index)
{
    using Def = FbxAnimCurveDef;
    FbxKeyForm const form = fbxKeyForm(keys, index);
    m_out.put(keys[index].time.Get());
    m_out.put(static_cast<double>(keys[index].value));
    if (form.flags & Def::eInterpolationConstant)
    {
        m_out.put(FbxLetter{'C'});
        m_out.put(FbxLetter{form.flags & Def::eConstantNext ? 'n' : 's'});
        return;
    }
    if (form.flags & Def::eInterpolationLinear)
    {
        m_out.put(FbxLetter{'L'});
        return;
    }
    m_out.put(FbxLetter{'U'});
    m_out.put(FbxLetter{form.flags & Def::eTangentGenericBreak ? 'b' : 's'});
    m_out.put(static_cast<double>(form.slopes[0]));
    m_out.put(static_cast<double>(form.slopes[1]));
    bool const right = form.flags & Def::eWeightedRight;
    bool const left = form.flags & Def::eWeightedNextLeft;
    m_out.put(FbxLetter{right && left ? 'a' : right ? 'r' : left ? 'l' : 'n'});
    if (right)
    {
        m_out.put(static_cast<double>(form.weights[0]));
    }
    if (left)
    {
        m_out.put(static_cast<double>(form.weights[1]));
    }
}

}

void fbxWriteTakes6(FbxContent& content, FbxBinary& out)
{
    Takes6(content, out).takes();
}

}
