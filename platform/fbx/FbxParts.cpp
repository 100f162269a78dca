#include "FbxParts.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace fbxsdk
{

namespace
{

constexpr char creator[] = "Marlo export library, FBX writer 1.0";
constexpr int geometryVersion = 124;

struct TypeWords
{
    char const* name;
    char const* label;
};

/// In the order of the types; an empty name is the property's own.
constexpr TypeWords typeWords[] = {
    {"int", "Integer"}, {"enum", ""},
    {"bool", ""},       {"double", "Number"},
    {"Number", ""},     {"KTime", "Time"},
    {"KString", ""},    {"Vector3D", "Vector"},
    {"Vector", ""},     {"ColorRGB", "Color"},
    {"Color", ""},      {"", ""},
    {"", ""},           {"Visibility Inheritance", ""},
    {"ULongLong", ""},  {"object", ""},
    {"Compound", ""},
};

bool isWholeNumber(FbxPropertyType type)
{
    return type == FbxPropertyType::Int || type == FbxPropertyType::Enum || type == FbxPropertyType::Bool ||
           type == FbxPropertyType::VisibilityInheritance;
}

}

FbxParts::FbxParts(FbxContent& content, FbxBinary& out) : m_content(content), m_out(out), m_isOld(out.version() < 7000)
{
}

std::vector<FbxParts::Value> FbxParts::valuesOf(FbxObject const& object) const
{
    std::vector<Value> result;
    result.reserve(object.records().size());
    for (FbxPropertyRecord const& record : object.records())
    {
        FbxPropertyDefinition const& definition = *record.definition;
        Value value{&definition, {}, 0, FbxString(), m_content.isAnimated(record)};
        std::copy_n(record.numbers, 3, value.numbers);
        value.ticks = record.other ? record.other->ticks : 0;
        if (definition.type == FbxPropertyType::String)
        {
            value.text = record.other ? record.other->text : FbxString(definition.text);
        }
        result.push_back(std::move(value));
    }
    auto const* const camera = dynamic_cast<FbxCamera const*>(&object);
    if (camera && camera->GetApertureMode() == FbxCamera::eFocalLength && camera->FocalLength.Get() > 0)
    {
        double const focal = camera->FocalLength.Get();
        double const across = camera->ComputeFieldOfView(focal);
        double const up = 2 * std::atan(camera->FilmHeight.Get() * 25.4 / (2 * focal)) * 180 / M_PI;
        for (Value& value : result)
        {
            bool const isAngle = std::strncmp(value.definition->name, "FieldOfView", 11) == 0;
            value.numbers[0] = !isAngle ? value.numbers[0] : value.definition->name[11] == 'Y' ? up : across;
        }
    }
    return result;
}

std::vector<FbxParts::Value> FbxParts::valuesOf(FbxDefinitions const& definitions)
{
    std::vector<Value> result;
    for (FbxPropertyDefinition const& definition : definitions)
    {
        Value value{&definition, {}, 0, FbxString(definition.text), false};
        std::copy_n(definition.numbers, 3, value.numbers);
        result.push_back(std::move(value));
    }
    return result;
}

std::vector<FbxParts::Value> FbxParts::valuesOf(FbxNode const& node) const
{
    std::vector<Value> result = valuesOf(static_cast<FbxObject const&>(node));
    auto const isSaid = [](Value const& value)
    {
        return value.definition->type != FbxPropertyType::OwnVector && !value.isAnimated &&
               std::equal(std::begin(value.numbers), std::end(value.numbers), value.definition->numbers);
    };
    if (!m_isOld)
    {
        result.erase(std::remove_if(result.begin(), result.end(), isSaid), result.end());
    }
    return result;
}

double FbxParts::frameRate() const
{
    FbxGlobalSettings const& settings = m_content.scene.GetGlobalSettings();
    bool const isOwn = settings.GetTimeMode() == FbxTime::eCustom && settings.GetCustomFrameRate() > 0;
    return isOwn ? settings.GetCustomFrameRate() : FbxTime::GetFrameRate(settings.GetTimeMode());
}

std::vector<FbxParts::Value> FbxParts::settings() const
{
    FbxGlobalSettings const& settings = m_content.scene.GetGlobalSettings();
    FbxTime::EMode mode = settings.GetTimeMode();
    double rate = settings.GetCustomFrameRate();
    if (mode == FbxTime::eDefaultMode)
    {
        mode = FbxTime::GetGlobalTimeMode();
    }
    if (mode >= FbxTime::eCustom)
    {
        // Readers know the modes up to this one; what lies behind goes by its rate.
        mode = FbxTime::eCustom;
        rate = frameRate();
    }
    std::vector<Value> result = valuesOf(settings);
    auto const named = [&](char const* name) -> Value&
    {
        return *std::find_if(result.begin(), result.end(),
                             [&](Value const& value) { return std::strcmp(value.definition->name, name) == 0; });
    };
    named("TimeMode").numbers[0] = mode;
    named("CustomFrameRate").numbers[0] = rate;
    named("TimeProtocol").numbers[0] = FbxTime::GetGlobalTimeProtocol();
    named("TimeSpanStart").ticks = m_content.timeSpan.GetStart().Get();
    named("TimeSpanStop").ticks = m_content.timeSpan.GetStop().Get();
    return result;
}

void FbxParts::openProperties()
{
    m_out.open(m_isOld ? "Properties60" : "Properties70");
}

void FbxParts::property(Value const& value, char const* suffix)
{
    FbxPropertyDefinition const& definition = *value.definition;
    FbxPropertyType const type = definition.type;
    TypeWords const& words = typeWords[static_cast<int>(type)];
    std::string flags = fbxIsAnimatable(type) ? "A" : "";
    flags += value.isAnimated ? "+" : "";
    flags += suffix;

    m_out.beginLeaf(m_isOld ? "Property" : "P");
    m_out.put(definition.name);
    m_out.put(*words.name ? words.name : definition.name);
    if (!m_isOld)
    {
        m_out.put(words.label);
    }
    m_out.put(flags);
    if (type == FbxPropertyType::Time || type == FbxPropertyType::ULongLong)
    {
        m_out.put(value.ticks);
    }
    else if (type == FbxPropertyType::String)
    {
        m_out.put(value.text.Buffer());
    }
    for (int i = 0; i < fbxNumberCount(type); ++i)
    {
        if (isWholeNumber(type))
        {
            m_out.put(static_cast<int>(value.numbers[i]));
        }
        else
        {
            m_out.put(value.numbers[i]);
        }
    }
    m_out.endLeaf();
}

void FbxParts::properties(std::vector<Value> const& values)
{
    openProperties();
    for (Value const& value : values)
    {
        property(value);
    }
    m_out.close();
}

void FbxParts::headerExtension()
{
    FbxMoment const& moment = m_content.moment;
    m_out.open("FBXHeaderExtension");
    m_out.leaf("FBXHeaderVersion", m_isOld ? 1003 : 1004);
    m_out.leaf("FBXVersion", m_out.version());
    m_out.leaf("EncryptionType", 0);
    m_out.open("CreationTimeStamp");
    m_out.leaf("Version", 1000);
    m_out.leaf("Year", moment.year);
    m_out.leaf("Month", moment.month);
    m_out.leaf("Day", moment.day);
    m_out.leaf("Hour", moment.hour);
    m_out.leaf("Minute", moment.minute);
    m_out.leaf("Second", moment.second);
    m_out.leaf("Millisecond", moment.millisecond);
    m_out.close();
    m_out.leaf("Creator", creator);
    if (!m_isOld)
    {
        // Says how long a tick is; without this word the newer, shorter tick would be read.
        m_out.open("OtherFlags");
        m_out.leaf("TCDefinition", 127);
        m_out.close();
        sceneInfo();
    }
    m_out.close();
}

void FbxParts::sceneInfo()
{
    m_out.open("SceneInfo", fbxFullName("GlobalInfo", "SceneInfo"), "UserData");
    m_out.leaf("Type", "UserData");
    m_out.leaf("Version", 100);
    m_out.open("MetaData");
    m_out.leaf("Version", 100);
    m_out.leaf("Title", m_content.scene.GetName());
    for (char const* const field : {"Subject", "Author", "Keywords", "Revision", "Comment"})
    {
        m_out.leaf(field, "");
    }
    m_out.close();
    static FbxDefinitions const list{
        {"Original", FbxPropertyType::Compound},
        {"Original|ApplicationName", FbxPropertyType::String, {}, creator},
        {"LastSaved", FbxPropertyType::Compound},
        {"LastSaved|ApplicationName", FbxPropertyType::String, {}, creator},
    };
    properties(valuesOf(list));
    m_out.close();
}

void FbxParts::creation()
{
    FbxId const id = fbxFileId(m_content.moment);
    m_out.leaf("FileId", FbxBytes{{reinterpret_cast<char const*>(id.data()), id.size()}});
    m_out.leaf("CreationTime", fbxCreationTime(m_content.moment));
    m_out.leaf("Creator", creator);
}

void FbxParts::cameraLines(FbxCamera const& camera)
{
    FbxDouble3 const position = camera.Position.Get();
    FbxDouble3 const up = camera.UpVector.Get();
    FbxDouble3 const interest = camera.InterestPosition.Get();
    m_out.leaf("GeometryVersion", geometryVersion);
    m_out.leaf("Position", position[0], position[1], position[2]);
    m_out.leaf("Up", up[0], up[1], up[2]);
    m_out.leaf("LookAt", interest[0], interest[1], interest[2]);
    m_out.leaf("ShowInfoOnMoving", 1);
    m_out.leaf("ShowAudio", 0);
    m_out.leaf("AudioColor", 0.0, 1.0, 0.0);
    m_out.leaf("CameraOrthoZoom", camera.OrthoZoom.Get());
}

void FbxParts::takeHead(FbxTake const& take)
{
    std::string file = take.name;
    std::replace(file.begin(), file.end(), ' ', '_');
    m_out.leaf("FileName", file + ".tak");
    m_out.leaf("LocalTime", take.local.GetStart().Get(), take.local.GetStop().Get());
    m_out.leaf("ReferenceTime", take.reference.GetStart().Get(), take.reference.GetStop().Get());
}

char const* FbxParts::subclass(FbxNodeAttribute const* attribute)
{
    switch (attribute ? attribute->GetAttributeType() : FbxNodeAttribute::eNull)
    {
    case FbxNodeAttribute::eMesh:
        return "Mesh";
    case FbxNodeAttribute::eCamera:
        return "Camera";
    case FbxNodeAttribute::eCameraStereo:
        return "CameraStereo";
    default:
        return "Null";
    }
}

FbxLetter FbxParts::shading(FbxNodeAttribute const* attribute)
{
    return {attribute && attribute->GetAttributeType() == FbxNodeAttribute::eMesh ? 'T' : 'Y'};
}

std::string fbxModelName(FbxWrittenNode const& written)
{
    return fbxFullName(written.name, "Model");
}

bool FbxKeyForm::operator==(FbxKeyForm const& other) const
{
    return flags == other.flags && slopes[0] == other.slopes[0] && slopes[1] == other.slopes[1] &&
           weights[0] == other.weights[0] && weights[1] == other.weights[1];
}

}
