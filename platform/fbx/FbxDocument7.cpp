// Version 7.7: objects have numbers, a node's attribute is an object of its own, and so are curves.
// Connections tie them together.

#include "FbxParts.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace fbxsdk
{

namespace
{

constexpr int modelVersion = 232;
constexpr int materialVersion = 102;
constexpr int curveVersion = 4009;

class Document7 : FbxParts
{
public:
    using FbxParts::FbxParts;

    void write();

private:
    /// What the definitions say of one kind of object.
    struct Kind
    {
        char const* name;
        std::size_t count;
        char const* templateName;
        FbxDefinitions const* definitions;
    };

    void documents();
    void definitions();
    Kind attributeKind() const;
    void objects();
    void model(FbxWrittenNode const& written);
    void attribute(FbxNodeAttribute const& attribute);
    void material(FbxWrittenMaterial const& written);
    void stack(FbxTake const& take);
    void curveNode(FbxAnimCurveNode const& node);
    void curve(FbxAnimCurve const& curve, double value);
    void connections();
    void nodeConnections(FbxWrittenNode const& written);
    void rigConnections(FbxCameraStereo const& rig);
    void curveConnections(FbxAnimCurveNode const& node, FbxAnimLayer const* layer);
    void connect(FbxObject const* source, FbxLongLong target);
    void connect(FbxObject const* source, FbxObject const* target, char const* property);
    void takes();

    /// Calls with every curve that is written: its channel and itself.
    template <class Function>
    static void forCurves(FbxAnimCurveNode const& node, Function const& call)
    {
        for (unsigned int i = 0; i < node.GetChannelsCount(); ++i)
        {
            FbxAnimCurve const* const one = node.GetCurve(i);
            if (one && one->KeyGetCount() > 0)
            {
                call(static_cast<int>(i), *one);
            }
        }
    }

    /// Calls with every curve node and its layer.
    template <class Function>
    void forCurveNodes(Function const& call) const
    {
        for (FbxTake const& take : m_content.takes)
        {
            for (FbxAnimLayer const* const layer : take.layers)
            {
                for (FbxAnimCurveNode const* const node : m_content.curveNodes(layer))
                {
                    call(*node, layer);
                }
            }
        }
    }
};

void Document7::write()
{
    headerExtension();
    creation();
    m_out.open("GlobalSettings");
    m_out.leaf("Version", 1000);
    properties(settings());
    m_out.close();
    documents();
    m_out.open("References");
    m_out.close();
    definitions();
    objects();
    connections();
    takes();
    m_out.finish(m_content.moment);
}

void Document7::documents()
{
    static FbxDefinitions const list{{"SourceObject", FbxPropertyType::Object},
                                     {"ActiveAnimStackName", FbxPropertyType::String}};
    std::vector<Value> values = valuesOf(list);
    values[1].text = FbxString(m_content.currentTake());
    m_out.open("Documents");
    m_out.leaf("Count", 1);
    m_out.open("Document", m_content.id(&m_content.scene), "", "Scene");
    properties(values);
    m_out.leaf("RootNode", FbxLongLong{0});
    m_out.close();
    m_out.close();
}

/// Readers take properties that an object lacks from the template, which there is only one of for
/// each kind; so objects have all of theirs, and it matters little which one it is.
Document7::Kind Document7::attributeKind() const
{
    Kind result{"NodeAttribute", m_content.looseEyes.size(), nullptr, nullptr};
    for (FbxWrittenNode const& written : m_content.nodes)
    {
        FbxNodeAttribute const* const attribute = written.node->GetNodeAttribute();
        if (!attribute || attribute->GetAttributeType() == FbxNodeAttribute::eMesh)
        {
            continue;
        }
        ++result.count;
        if (!result.templateName)
        {
            bool const isNull = attribute->GetAttributeType() == FbxNodeAttribute::eNull;
            result.templateName = isNull ? "FbxNull" : "FbxCamera";
            result.definitions = isNull ? &fbxNullDefinitions() : &fbxCameraDefinitions();
        }
    }
    return result;
}

void Document7::definitions()
{
    auto const meshes = static_cast<std::size_t>(std::count_if(m_content.nodes.begin(), m_content.nodes.end(),
                                                               [](FbxWrittenNode const& written)
                                                               { return written.node->GetMesh() != nullptr; }));
    std::size_t layers = 0;
    std::size_t curveNodes = 0;
    std::size_t curves = 0;
    for (FbxTake const& take : m_content.takes)
    {
        layers += take.layers.size();
    }
    forCurveNodes(
        [&](FbxAnimCurveNode const& node, FbxAnimLayer const*)
        {
            ++curveNodes;
            forCurves(node, [&](int, FbxAnimCurve const&) { ++curves; });
        });
    Kind const kinds[] = {
        {"GlobalSettings", 1, nullptr, nullptr},
        attributeKind(),
        {"Geometry", meshes, "FbxMesh", &fbxMeshDefinitions()},
        {"Model", m_content.nodes.size(), "FbxNode", &fbxNodeDefinitions()},
        {"Material", m_content.materials.size(), "FbxSurfaceLambert", &fbxLambertDefinitions()},
        {"AnimationStack", m_content.takes.size(), "FbxAnimStack", &fbxStackDefinitions()},
        {"AnimationLayer", layers, "FbxAnimLayer", &fbxLayerDefinitions()},
        {"AnimationCurveNode", curveNodes, "FbxAnimCurveNode", &fbxCurveNodeDefinitions()},
        {"AnimationCurve", curves, nullptr, nullptr},
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
        if (kind.count == 0)
        {
            continue;
        }
        m_out.open("ObjectType", kind.name);
        m_out.leaf("Count", static_cast<int>(kind.count));
        if (kind.templateName)
        {
            m_out.open("PropertyTemplate", kind.templateName);
            properties(valuesOf(*kind.definitions));
            m_out.close();
        }
        m_out.close();
    }
    m_out.close();
}

void Document7::objects()
{
    m_out.open("Objects");
    for (FbxWrittenNode const& written : m_content.nodes)
    {
        if (FbxNodeAttribute const* const own = written.node->GetNodeAttribute())
        {
            attribute(*own);
        }
        model(written);
    }
    for (FbxCamera const* const eye : m_content.looseEyes)
    {
        attribute(*eye);
    }
    for (FbxWrittenMaterial const& written : m_content.materials)
    {
        material(written);
    }
    for (FbxTake const& take : m_content.takes)
    {
        stack(take);
    }
    forCurveNodes([this](FbxAnimCurveNode const& node, FbxAnimLayer const*) { curveNode(node); });
    m_out.close();
}

void Document7::model(FbxWrittenNode const& written)
{
    FbxNodeAttribute const* const own = written.node->GetNodeAttribute();
    m_out.open("Model", m_content.id(written.node), fbxFullName(written.name, "Model"), subclass(own));
    m_out.leaf("Version", modelVersion);
    properties(valuesOf(*written.node));
    m_out.leaf("Shading", shading(own));
    m_out.leaf("Culling", "CullingOff");
    m_out.close();
}

void Document7::attribute(FbxNodeAttribute const& attribute)
{
    char const* const kind = subclass(&attribute);
    if (auto const* const mesh = dynamic_cast<FbxMesh const*>(&attribute))
    {
        m_out.open("Geometry", m_content.id(mesh), fbxFullName(mesh->GetName(), "Geometry"), kind);
        properties(valuesOf(*mesh));
        m_out.leaf("GeometryVersion", 124);
        geometry(*mesh, mesh->GetNode() ? mesh->GetNode()->GetMaterialCount() : 0);
        m_out.close();
        return;
    }
    m_out.open("NodeAttribute", m_content.id(&attribute), fbxFullName(attribute.GetName(), "NodeAttribute"), kind);
    properties(valuesOf(attribute));
    m_out.leaf("TypeFlags", kind);
    if (attribute.GetAttributeType() == FbxNodeAttribute::eCamera)
    {
        cameraLines(static_cast<FbxCamera const&>(attribute));
    }
    else if (attribute.GetAttributeType() == FbxNodeAttribute::eCameraStereo)
    {
        m_out.leaf("Version", 100);
    }
    m_out.close();
}

void Document7::material(FbxWrittenMaterial const& written)
{
    m_out.open("Material", m_content.id(written.material), fbxFullName(written.name, "Material"), "");
    m_out.leaf("Version", materialVersion);
    m_out.leaf("ShadingModel", "lambert");
    m_out.leaf("MultiLayer", static_cast<int>(written.material->MultiLayer.Get()));
    properties(valuesOf(*written.material));
    m_out.close();
}

void Document7::stack(FbxTake const& take)
{
    std::vector<Value> values = valuesOf(*take.stack);
    FbxTime const times[] = {take.local.GetStart(), take.local.GetStop(), take.reference.GetStart(),
                             take.reference.GetStop()};
    for (std::size_t i = 0; i < 4; ++i)
    {
        values[i + 1].ticks = times[i].Get(); // behind the description
    }
    m_out.open("AnimationStack", m_content.id(take.stack), fbxFullName(take.name, "AnimStack"), "");
    properties(values);
    m_out.close();
    for (FbxAnimLayer const* const layer : take.layers)
    {
        m_out.open("AnimationLayer", m_content.id(layer), fbxFullName(layer->GetName(), "AnimLayer"), "");
        m_out.close();
    }
}

void Document7::curveNode(FbxAnimCurveNode const& node)
{
    FbxPropertyRecord const& record = *node.record();
    m_out.open("AnimationCurveNode", m_content.id(&node), fbxFullName(node.GetName(), "AnimCurveNode"), "");
    openProperties();
    for (unsigned int i = 0; i < node.GetChannelsCount(); ++i)
    {
        std::string const name = std::string("d|") + node.GetChannelName(static_cast<int>(i)).Buffer();
        m_out.leaf("P", name, "Number", "", "A", record.numbers[i]);
    }
    m_out.close();
    m_out.close();
    forCurves(node, [&](int channel, FbxAnimCurve const& one) { curve(one, record.numbers[channel]); });
}

void Document7::curve(FbxAnimCurve const& curve, double value)
{
    std::vector<FbxAnimCurveKey> const& keys = curve.keys();
    std::vector<FbxLongLong> times;
    std::vector<float> values;
    std::vector<int> flags;
    std::vector<float> data;
    std::vector<int> counts;
    times.reserve(keys.size());
    values.reserve(keys.size());
    FbxKeyForm last{};
    for (std::size_t i = 0; i < keys.size(); ++i)
    {
        times.push_back(keys[i].time.Get());
        values.push_back(keys[i].value);
        FbxKeyForm const form = fbxKeyForm(keys, i);
        if (i > 0 && form == last)
        {
            ++counts.back();
            continue;
        }
        last = form;
        // Two weights of 16 bits each share the place of a float: bits, not a number.
        std::uint32_t const weights = static_cast<std::uint32_t>(form.weights[0] * 10000.0F) |
                                      static_cast<std::uint32_t>(form.weights[1] * 10000.0F) << 16U;
        float packed = 0;
        std::memcpy(&packed, &weights, sizeof(packed));
        flags.push_back(static_cast<int>(form.flags));
        data.insert(data.end(), {form.slopes[0], form.slopes[1], packed, 0.0F});
        counts.push_back(1);
    }
    m_out.open("AnimationCurve", m_content.id(&curve), fbxFullName("", "AnimCurve"), "");
    m_out.leaf("Default", value);
    m_out.leaf("KeyVer", curveVersion);
    m_out.array("KeyTime", times);
    m_out.array("KeyValueFloat", values);
    m_out.array("KeyAttrFlags", flags);
    m_out.array("KeyAttrDataFloat", data);
    m_out.array("KeyAttrRefCount", counts);
    m_out.close();
}

void Document7::connect(FbxObject const* source, FbxLongLong target)
{
    m_out.leaf("C", "OO", m_content.id(source), target);
}

void Document7::connect(FbxObject const* source, FbxObject const* target, char const* property)
{
    m_out.leaf("C", "OP", m_content.id(source), m_content.id(target), property);
}

void Document7::connections()
{
    m_out.open("Connections");
    for (FbxWrittenNode const& written : m_content.nodes)
    {
        nodeConnections(written);
    }
    for (FbxTake const& take : m_content.takes)
    {
        for (FbxAnimLayer const* const layer : take.layers)
        {
            connect(layer, m_content.id(take.stack));
        }
    }
    forCurveNodes([this](FbxAnimCurveNode const& node, FbxAnimLayer const* layer) { curveConnections(node, layer); });
    m_out.close();
}

void Document7::nodeConnections(FbxWrittenNode const& written)
{
    FbxNode const* const node = written.node;
    FbxLongLong const parent =
        written.parent < 0 ? 0 : m_content.id(m_content.nodes[static_cast<std::size_t>(written.parent)].node);
    connect(node, parent);
    FbxNodeAttribute const* const own = node->GetNodeAttribute();
    if (own)
    {
        connect(own, m_content.id(node));
    }
    for (int i = 0; i < node->GetMaterialCount(); ++i)
    {
        connect(node->GetMaterial(i), m_content.id(node));
    }
    if (auto const* const rig = dynamic_cast<FbxCameraStereo const*>(own))
    {
        rigConnections(*rig);
    }
}

void Document7::rigConnections(FbxCameraStereo const& rig)
{
    if (FbxCamera const* const left = rig.GetLeftCamera())
    {
        connect(left, &rig, "LeftCamera");
    }
    if (FbxCamera const* const right = rig.GetRightCamera())
    {
        connect(right, &rig, "RightCamera");
    }
}

void Document7::curveConnections(FbxAnimCurveNode const& node, FbxAnimLayer const* layer)
{
    connect(&node, m_content.id(layer));
    connect(&node, node.record()->owner, node.record()->definition->name);
    forCurves(node,
              [&](int channel, FbxAnimCurve const& one)
              {
                  std::string const name = std::string("d|") + node.GetChannelName(channel).Buffer();
                  connect(&one, &node, name.c_str());
              });
}

void Document7::takes()
{
    m_out.open("Takes");
    m_out.leaf("Current", m_content.currentTake());
    for (FbxTake const& take : m_content.takes)
    {
        m_out.open("Take", take.name);
        takeHead(take);
        m_out.close();
    }
    m_out.close();
}

}

void fbxWrite7(FbxContent& content, FbxBinary& out)
{
    Document7(content, out).write();
}

}
