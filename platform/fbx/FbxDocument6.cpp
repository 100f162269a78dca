// Version 6.1: an object is its name, a node carries its attribute and geometry itself, and curves
// hang below the name of their node in a take.

#include "FbxParts.h"

#include <QByteArray>

#include <algorithm>
#include <cstring>
#include <unordered_map>

namespace fbxsdk
{

namespace
{

constexpr int modelVersion = 232;
constexpr int materialVersion = 102;
constexpr int keyVersion = 4005;
constexpr double takeModelVersion = 1.1;

/// Flags of an attribute's property on a node end with this.
constexpr char ofAttribute[] = "N";

/// Properties that this version doesn't have.
bool isNew(FbxPropertyDefinition const& definition)
{
    return definition.type == FbxPropertyType::VisibilityInheritance ||
           std::strcmp(definition.name, "TimeMarker") == 0 || std::strcmp(definition.name, "CurrentTimeMarker") == 0;
}

class Document6 : FbxParts
{
public:
    using FbxParts::FbxParts;

    void write();

private:
    /// What curves drive of one object, in the order of their making.
    using CurveNodes = std::vector<FbxAnimCurveNode const*>;

    void definitions();
    void objects();
    void oldProperties(std::vector<Value> const& own, std::vector<Value> const& attribute);
    void model(FbxWrittenNode const& written);
    void attributeLines(FbxNodeAttribute const* attribute, FbxNode const* node);
    void looseEye(FbxCamera const& eye);
    void material(FbxWrittenMaterial const& written);
    void connections();
    void rigConnections(FbxCameraStereo const& rig);
    void takes();
    void take(FbxTake const& take);
    void transform(CurveNodes const& nodes);
    void curveNode(FbxAnimCurveNode const& node, char const* name, int layerType);
    void channel(FbxAnimCurveNode const& node, int index);
    void key(std::vector<FbxAnimCurveKey> const& keys, std::size_t index);
    void tail();
    void summary(std::size_t start);

    static std::string nodeName(FbxWrittenNode const& written)
    {
        return fbxFullName(written.name, "Model");
    }
};

void Document6::write()
{
    headerExtension();
    creation();
    m_out.open("Document");
    m_out.leaf("Name", "");
    m_out.close();
    m_out.open("References");
    m_out.close();
    definitions();
    objects();
    connections();
    takes();
    tail();
    m_out.finish(m_content.moment);
    summary(m_out.size());
}

void Document6::definitions()
{
    struct Kind
    {
        char const* name;
        std::size_t count;
    };
    Kind const kinds[] = {
        {"Model", m_content.nodes.size()},
        {"NodeAttribute", m_content.looseEyes.size()},
        {"Material", m_content.materials.size()},
        {"SceneInfo", 1},
        {"GlobalSettings", 1},
    };
    std::size_t total = 0;
    for (Kind const& kind : kinds)
    {
        total += kind.count;
    }
    m_out.open("Definitions");
    m_out.leaf("Version", 100);
    m_out.leaf("Count", static_cast<int>(total));
    for (Kind const& kind : kinds)
    {
        if (kind.count > 0)
        {
            m_out.open("ObjectType", kind.name);
            m_out.leaf("Count", static_cast<int>(kind.count));
            m_out.close();
        }
    }
    m_out.close();
}

void Document6::objects()
{
    m_out.open("Objects");
    for (FbxWrittenNode const& written : m_content.nodes)
    {
        model(written);
    }
    for (FbxCamera const* const eye : m_content.looseEyes)
    {
        looseEye(*eye);
    }
    for (FbxWrittenMaterial const& written : m_content.materials)
    {
        material(written);
    }
    sceneInfo();
    m_out.open("GlobalSettings");
    m_out.leaf("Version", 1000);
    oldProperties(settings(), {});
    m_out.close();
    m_out.close();
}

void Document6::oldProperties(std::vector<Value> const& own, std::vector<Value> const& attribute)
{
    openProperties();
    for (Value const& value : own)
    {
        if (!isNew(*value.definition))
        {
            property(value);
        }
    }
    for (Value const& value : attribute)
    {
        property(value, ofAttribute);
    }
    m_out.close();
}

void Document6::model(FbxWrittenNode const& written)
{
    FbxNodeAttribute const* const own = written.node->GetNodeAttribute();
    m_out.open("Model", nodeName(written), subclass(own));
    m_out.leaf("Version", modelVersion);
    oldProperties(valuesOf(*written.node), own ? valuesOf(*own) : std::vector<Value>());
    m_out.leaf("MultiLayer", 0);
    m_out.leaf("MultiTake", 0);
    m_out.leaf("Shading", shading(own));
    m_out.leaf("Culling", "CullingOff");
    attributeLines(own, written.node);
    if (own)
    {
        m_out.leaf("NodeAttributeName", m_content.attributeName(own));
    }
    m_out.close();
}

void Document6::attributeLines(FbxNodeAttribute const* attribute, FbxNode const* node)
{
    if (auto const* const mesh = dynamic_cast<FbxMesh const*>(attribute))
    {
        m_out.leaf("GeometryVersion", 124);
        geometry(*mesh, node->GetMaterialCount());
        return;
    }
    m_out.leaf("TypeFlags", subclass(attribute));
    if (auto const* const rig = dynamic_cast<FbxCameraStereo const*>(attribute))
    {
        m_out.leaf("Version", 100);
    }
    else if (auto const* const camera = dynamic_cast<FbxCamera const*>(attribute))
    {
        cameraLines(*camera);
    }
}

void Document6::looseEye(FbxCamera const& eye)
{
    std::string const name = m_content.attributeName(&eye);
    m_out.open("NodeAttribute", name, "Camera");
    oldProperties(valuesOf(eye), {});
    attributeLines(&eye, nullptr);
    m_out.leaf("NodeAttributeName", name);
    m_out.close();
}

void Document6::material(FbxWrittenMaterial const& written)
{
    m_out.open("Material", fbxFullName(written.name, "Material"), "");
    m_out.leaf("Version", materialVersion);
    m_out.leaf("ShadingModel", "lambert");
    m_out.leaf("MultiLayer", static_cast<int>(written.material->MultiLayer.Get()));
    oldProperties(valuesOf(*written.material), {});
    m_out.close();
}

void Document6::connections()
{
    std::string const root = fbxFullName("Scene", "Model");
    std::unordered_map<FbxObject const*, std::string> materials;
    for (FbxWrittenMaterial const& written : m_content.materials)
    {
        materials[written.material] = fbxFullName(written.name, "Material");
    }
    m_out.open("Connections");
    for (FbxWrittenNode const& written : m_content.nodes)
    {
        m_out.leaf("Connect", "OO", nodeName(written),
                   written.parent < 0 ? root : nodeName(m_content.nodes[static_cast<std::size_t>(written.parent)]));
        for (int i = 0; i < written.node->GetMaterialCount(); ++i)
        {
            m_out.leaf("Connect", "OO", materials[written.node->GetMaterial(i)], nodeName(written));
        }
        if (auto const* const rig = dynamic_cast<FbxCameraStereo const*>(written.node->GetNodeAttribute()))
        {
            rigConnections(*rig);
        }
    }
    m_out.close();
}

void Document6::rigConnections(FbxCameraStereo const& rig)
{
    auto const connect = [&](FbxCamera const* eye, char const* property)
    {
        if (eye)
        {
            m_out.leaf("Connect", "OP", m_content.attributeName(eye), m_content.attributeName(&rig), property);
        }
    };
    connect(rig.GetLeftCamera(), "LeftCamera");
    connect(rig.GetRightCamera(), "RightCamera");
}

void Document6::takes()
{
    m_out.open("Takes");
    m_out.leaf("Current", m_content.currentTake());
    for (FbxTake const& one : m_content.takes)
    {
        take(one);
    }
    m_out.close();
}

void Document6::take(FbxTake const& take)
{
    // Curves by the node they belong to. A property that more than one layer drives has the
    // curves of the first: takes have no layers.
    std::unordered_map<FbxObject const*, CurveNodes> curves;
    std::unordered_map<FbxPropertyRecord const*, bool> known;
    for (FbxAnimLayer const* const layer : take.layers)
    {
        for (FbxAnimCurveNode const* const node : m_content.curveNodes(layer))
        {
            if (known.emplace(node->record(), true).second)
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
        object(nodeName(written), written.node, written.node->GetNodeAttribute());
    }
    for (FbxCamera const* const eye : m_content.looseEyes)
    {
        object(m_content.attributeName(eye), nullptr, eye);
    }
    m_out.close();
}

void Document6::transform(CurveNodes const& nodes)
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

void Document6::curveNode(FbxAnimCurveNode const& node, char const* name, int layerType)
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

void Document6::channel(FbxAnimCurveNode const& node, int index)
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

void Document6::key(std::vector<FbxAnimCurveKey> const& keys, std::size_t index)
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

void Document6::tail()
{
    m_out.open("Version5");
    m_out.open("AmbientRenderSettings");
    m_out.leaf("Version", 101);
    m_out.leaf("AmbientLightColor", 0.0, 0.0, 0.0, 1.0);
    m_out.close();
    m_out.open("FogOptions");
    m_out.leaf("FlogEnable", 0); // spelled so in files
    m_out.leaf("FogMode", 0);
    m_out.leaf("FogDensity", 0.002);
    m_out.leaf("FogStart", 0.3);
    m_out.leaf("FogEnd", 1000.0);
    m_out.leaf("FogColor", 1.0, 1.0, 1.0, 1.0);
    m_out.close();
    m_out.open("Settings");
    m_out.leaf("FrameRate", QByteArray::number(frameRate()).constData());
    m_out.leaf("TimeFormat", 1);
    m_out.leaf("SnapOnFrames", 0);
    m_out.leaf("ReferenceTimeIndex", -1);
    m_out.leaf("TimeLineStartTime", m_content.timeSpan.GetStart().Get());
    m_out.leaf("TimeLineStopTime", m_content.timeSpan.GetStop().Get());
    m_out.close();
    m_out.open("RendererSetting");
    m_out.leaf("DefaultCamera", m_content.scene.GetGlobalSettings().GetDefaultCamera().Buffer());
    m_out.leaf("DefaultViewingMode", 0);
    m_out.close();
    m_out.close();
}

/// Files of this version go on behind their foot with a summary and another foot.
void Document6::summary(std::size_t start)
{
    creation();
    m_out.open("Summary");
    m_out.leaf("Version", 101);
    m_out.leaf("Template", 0);
    m_out.leaf("PasswordProtection", 0);
    m_out.open("ContentCount");
    m_out.leaf("Version", "100");
    m_out.leaf("Model", static_cast<int>(m_content.nodes.size()));
    for (char const* const kind : {"Device", "Character", "Actor", "Constraint", "Media"})
    {
        m_out.leaf(kind, 0);
    }
    m_out.close();
    sceneInfo();
    m_out.open("Takes");
    m_out.leaf("Version", 101);
    m_out.leaf("Current", m_content.currentTake());
    for (FbxTake const& take : m_content.takes)
    {
        m_out.open("Take", take.name);
        m_out.leaf("LocalTime", take.local.GetStart().Get(), take.local.GetStop().Get());
        m_out.leaf("ReferenceTime", take.reference.GetStart().Get(), take.reference.GetStop().Get());
        m_out.close();
    }
    m_out.close();
    m_out.close();
    m_out.finish(m_content.moment, start);
}

}

void fbxWrite6(FbxContent& content, FbxBinary& out)
{
    Document6(content, out).write();
}

}
