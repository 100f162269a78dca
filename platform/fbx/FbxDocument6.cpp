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
    void definitions();
    void objects();
    void oldProperties(std::vector<Value> const& own, std::vector<Value> const& attribute);
    void model(FbxWrittenNode const& written);
    void attributeLines(FbxNodeAttribute const* attribute, FbxNode const* node);
    void looseEye(FbxCamera const& eye);
    void material(FbxWrittenMaterial const& written);
    void connections();
    void rigConnections(FbxCameraStereo const& rig);
    void tail();
    void summary(std::size_t start);
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
    fbxWriteTakes6(m_content, m_out);
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
    m_out.open("Model", fbxModelName(written), subclass(own));
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
        m_out.leaf("Connect", "OO", fbxModelName(written),
                   written.parent < 0 ? root : fbxModelName(m_content.nodes[static_cast<std::size_t>(written.parent)]));
        for (int i = 0; i < written.node->GetMaterialCount(); ++i)
        {
            m_out.leaf("Connect", "OO", materials[written.node->GetMaterial(i)], fbxModelName(written));
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
