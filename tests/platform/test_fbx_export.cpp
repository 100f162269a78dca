#include "FbxBinary.h"
#include "test_fbx_file.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <fbxsdk.h>
#include <gtest/gtest.h>

#include <csignal>
#include <map>
#include <memory>
#include <set>
#include <sys/resource.h>

namespace
{

using FbxFile::Node;

constexpr int binary7 = 0;
constexpr int binary6 = 1;
constexpr FbxLongLong frameTicks = 1924423250;

struct ManagerEnd
{
    void operator()(FbxManager* manager) const
    {
        manager->Destroy();
    }
};

std::string fullName(std::string const& name, char const* kind)
{
    return name + std::string("\0\1", 2) + kind;
}

/// A scene to be filled, and the file that comes of it.
class FbxExports : public testing::Test
{
protected:
    void TearDown() override
    {
        FbxTime::SetGlobalTimeMode(FbxTime::eFrames30);
        FbxTime::SetGlobalTimeProtocol(FbxTime::eDefaultProtocol);
    }

    FbxNode* node(char const* name, FbxNodeAttribute* attribute = nullptr, FbxNode* parent = nullptr)
    {
        FbxNode* const result = FbxNode::Create(scene, name);
        result->SetNodeAttribute(attribute);
        (parent ? parent : scene->GetRootNode())->AddChild(result);
        return result;
    }

    void key(FbxPropertyT<FbxDouble>& property, std::initializer_list<float> values, int firstFrame = 1001)
    {
        fill(property.GetCurve(layer, true), values, firstFrame);
    }

    static void fill(FbxAnimCurve* curve, std::initializer_list<float> values, int firstFrame = 1001)
    {
        for (float const value : values)
        {
            FbxTime time;
            time.SetTime(0, 0, 0, firstFrame++, 0, 0, FbxTime::eFrames24);
            curve->KeySet(curve->KeyAdd(time), time, value, FbxAnimCurveDef::eInterpolationLinear);
        }
    }

    FbxCamera* shot()
    {
        FbxCamera* const camera = FbxCamera::Create(scene, "camera");
        camera->SetApertureMode(FbxCamera::eFocalLength);
        camera->SetApertureWidth(36 / 25.4);
        camera->SetApertureHeight(18 / 25.4);
        camera->FocalLength.Set(18);
        FbxNode* const carrier = node("carrier", FbxNull::Create(scene, "carrier"));
        FbxNode* const top = node("top", camera, carrier);
        top->LclTranslation.Set(FbxDouble3(1, 2, 3));
        fill(top->LclTranslation.GetCurve(layer, "X", true), {1, 5, 6});
        fill(top->LclTranslation.GetCurve(layer, "Z", true), {3, 4}, 1002);
        key(camera->FocalLength, {18, 20});
        return camera;
    }

    FbxMesh* quadAndTriangle(char const* name)
    {
        FbxMesh* const mesh = FbxMesh::Create(scene, name);
        mesh->InitControlPoints(5);
        for (int i = 0; i < 5; ++i)
        {
            mesh->SetControlPointAt(FbxVector4(i, 10 + i, 20 + i), i);
        }
        FbxGeometryElementMaterial* const materials = mesh->CreateElementMaterial();
        materials->SetMappingMode(FbxLayerElement::eByPolygon);
        materials->SetReferenceMode(FbxLayerElement::eIndexToDirect);
        for (std::vector<int> const& polygon : {std::vector<int>{0, 1, 2, 3}, {0, 1}, {0, 1, 5}, {4, -1, 2}, {4, 3, 2}})
        {
            mesh->BeginPolygon(polygon.size() == 3 ? 1 : 0);
            for (int const point : polygon)
            {
                mesh->AddPolygon(point);
            }
            mesh->EndPolygon();
        }
        return mesh;
    }

    std::string write(int format, FbxIOSettings* settings = nullptr)
    {
        std::string const name = QFile::encodeName(folder.filePath(QStringLiteral("out.fbx"))).toStdString();
        FbxExporter* const exporter = FbxExporter::Create(manager.get(), "");
        EXPECT_TRUE(exporter->Initialize(name.c_str(), format, settings));
        EXPECT_TRUE(exporter->Export(scene)) << exporter->GetStatus().GetErrorString();
        QFile file(QFile::decodeName(name.c_str()));
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll().toStdString();
    }

    Node read(int format)
    {
        return FbxFile::Reader(write(format)).root;
    }

    QTemporaryDir folder;
    std::unique_ptr<FbxManager, ManagerEnd> manager{FbxManager::Create()};
    FbxScene* scene = FbxScene::Create(manager.get(), "scene");
    FbxAnimStack* stack = FbxAnimStack::Create(scene, "the take");
    FbxAnimLayer* layer = FbxAnimLayer::Create(stack, "layer");
};

Node const& object(Node const& file, char const* kind, std::string const& fullName)
{
    for (Node const* one : file.at("Objects").all(kind))
    {
        // In version 7.7 a number comes first.
        if (one->properties[one->properties[0].code == 'L' ? 1 : 0].text == fullName)
        {
            return *one;
        }
    }
    throw std::runtime_error("no " + fullName);
}

/// The names of Models, in their order.
std::vector<std::string> models(Node const& file)
{
    std::vector<std::string> result;
    for (Node const* one : file.at("Objects").all("Model"))
    {
        std::string const& name = one->properties[one->properties[0].code == 'L' ? 1 : 0].text;
        result.push_back(name.substr(0, name.find('\0')));
    }
    return result;
}

TEST_F(FbxExports, RegistryNamesOneWriterOfEachVersion)
{
    FbxIOPluginRegistry const& registry = *manager->GetIOPluginRegistry();
    ASSERT_EQ(registry.GetWriterFormatCount(), 2);
    EXPECT_STREQ(registry.GetWriterFormatDescription(binary7), "FBX binary (*.fbx)");
    EXPECT_STREQ(registry.GetWriterFormatDescription(binary6), "FBX 6.0 binary (*.fbx)");
    EXPECT_FALSE(registry.WriterIsFBX(2));
    EXPECT_EQ(FbxFile::Reader(write(-1)).version, 7700U);
    EXPECT_EQ(FbxFile::Reader(write(binary6)).version, 6100U);
}

TEST_F(FbxExports, Version7IsWhole)
{
    shot();
    FbxMesh* const mesh = quadAndTriangle("mesh");
    FbxNode* const meshNode = node("mesh", mesh);
    FbxSurfaceLambert* const material = FbxSurfaceLambert::Create(scene, "paint");
    meshNode->AddMaterial(material);
    node("other", quadAndTriangle("other"))->AddMaterial(material);
    Node const file = read(binary7);

    // Numbers are unique, counts are right, every connection has two ends, every model one parent.
    std::map<std::string, int> counts{{"GlobalSettings", 1}};
    std::map<std::int64_t, Node const*> objects;
    for (Node const& one : file.at("Objects").children)
    {
        ++counts[one.name];
        EXPECT_GT(one.properties[0].whole, 0);
        EXPECT_TRUE(objects.emplace(one.properties[0].whole, &one).second);
        EXPECT_TRUE(one.isBlock) << one.name;
    }
    std::int64_t total = 0;
    for (Node const* type : file.at("Definitions").all("ObjectType"))
    {
        EXPECT_EQ(type->at("Count").properties[0].whole, counts[type->properties[0].text]);
        total += type->at("Count").properties[0].whole;
        counts.erase(type->properties[0].text);
    }
    EXPECT_TRUE(counts.empty()) << counts.begin()->first;
    EXPECT_EQ(file.at("Definitions").at("Count").properties[0].whole, total);

    std::map<std::int64_t, int> parents;
    std::set<std::string> links;
    for (Node const* one : file.at("Connections").all("C"))
    {
        std::int64_t const source = one->properties[1].whole;
        std::int64_t const target = one->properties[2].whole;
        ASSERT_TRUE(objects.count(source));
        ASSERT_TRUE(target == 0 || objects.count(target));
        std::string const kind = target ? objects[target]->name : "root";
        parents[source] += one->properties[0].text == "OO";
        links.insert(objects[source]->name + ">" + kind +
                     (one->properties.size() > 3 ? ":" + one->properties[3].text : ""));
    }
    EXPECT_EQ(links, (std::set<std::string>{
                         "Model>root", "Model>Model", "NodeAttribute>Model", "Geometry>Model", "Material>Model",
                         "AnimationLayer>AnimationStack", "AnimationCurveNode>AnimationLayer",
                         "AnimationCurveNode>Model:Lcl Translation", "AnimationCurveNode>NodeAttribute:FocalLength",
                         "AnimationCurve>AnimationCurveNode:d|X", "AnimationCurve>AnimationCurveNode:d|Z",
                         "AnimationCurve>AnimationCurveNode:d|FocalLength"}));
    for (auto const& [id, one] : objects)
    {
        int const expected = one->name == "Material" ? 2 : one->name == "AnimationStack" ? 0 : 1;
        EXPECT_EQ(parents[id], one->name == "AnimationCurve" ? 0 : expected) << one->name;
    }
}

TEST_F(FbxExports, HeadSaysWhenAndHowLongATickIs)
{
    std::string const data = write(binary7);
    EXPECT_EQ(write(binary7), data);
    FbxFile::Reader const file(data);
    Node const& head = file.root.at("FBXHeaderExtension");
    EXPECT_EQ(head.at("FBXHeaderVersion").properties[0].whole, 1004);
    EXPECT_EQ(head.at("OtherFlags").at("TCDefinition").properties[0].whole, 127);
    EXPECT_EQ(head.at("CreationTimeStamp").at("Day").properties[0].whole, 2);
    EXPECT_EQ(file.root.at("CreationTime").properties[0].text, "1970-01-02 00:00:00:000");
    fbxsdk::FbxMoment const moment{1970, 1, 2, 0, 0, 0, 0};
    fbxsdk::FbxId const id = fbxsdk::fbxFileId(moment);
    fbxsdk::FbxId const footer = fbxsdk::fbxFooterId(moment);
    EXPECT_EQ(file.root.at("FileId").properties[0].text, std::string(id.begin(), id.end()));
    EXPECT_EQ(file.footer, std::string(footer.begin(), footer.end()));

    FbxFile::Reader const old(write(binary6));
    EXPECT_EQ(old.root.at("FBXHeaderExtension").at("FBXHeaderVersion").properties[0].whole, 1003);
    EXPECT_EQ(old.root.at("FBXHeaderExtension").find("OtherFlags"), nullptr);
    EXPECT_EQ(old.summary.at("FileId").properties[0].text, std::string(id.begin(), id.end()));
}

TEST_F(FbxExports, CameraAndTransformsOfVersion7)
{
    FbxCamera* const camera = shot();
    camera->InterestPosition.Set(FbxVector4(0, 2, -1));
    camera->Position.Set(FbxVector4(4, 5, 6));
    Node const file = read(binary7);
    Node const& model = object(file, "Model", fullName("top", "Model"));
    EXPECT_EQ(model.properties[2].text, "Camera");
    EXPECT_EQ(model.property("Lcl Translation").properties.at(3).text, "A+");
    EXPECT_EQ(model.property("Lcl Translation").properties.at(5).number, 2);
    EXPECT_EQ(model.property("Lcl Rotation").properties.at(3).text, "A");
    EXPECT_EQ(model.value("RotationActive"), 1);
    EXPECT_EQ(model.value("InheritType"), 1);

    Node const& attribute = object(file, "NodeAttribute", fullName("camera", "NodeAttribute"));
    EXPECT_EQ(attribute.value("ApertureMode"), 3);
    EXPECT_EQ(attribute.value("FilmHeight"), 18 / 25.4);
    EXPECT_EQ(attribute.property("FocalLength").properties.at(3).text, "A+");
    EXPECT_EQ(attribute.at("LookAt").numbers(), (std::vector<double>{0, 2, -1}));
    EXPECT_EQ(attribute.at("Position").numbers(), (std::vector<double>{4, 5, 6}));
    // Those who look at the angles alone see the same lens.
    EXPECT_NEAR(attribute.value("FieldOfView"), 90, 1e-12);
    EXPECT_NEAR(attribute.value("FieldOfViewX"), 90, 1e-12);
    EXPECT_NEAR(attribute.value("FieldOfViewY"), 53.13010235415598, 1e-12);
    camera->SetApertureMode(FbxCamera::eHorizontal);
    camera->FieldOfView.Set(33);
    EXPECT_EQ(object(read(binary7), "NodeAttribute", fullName("camera", "NodeAttribute")).value("FieldOfView"), 33);
}

TEST_F(FbxExports, KeysOfVersion7AreRuns)
{
    FbxCamera* const camera = shot();
    FbxAnimCurve* const curve = camera->FocalLength.GetCurve(layer);
    using Def = FbxAnimCurveDef;
    fill(curve, {18, 20, 30, 40, 55, 60, 70});
    // Held, next, cubic by itself, cubic with own slopes and weights; then two linear ones.
    curve->KeySetInterpolation(1, Def::eInterpolationConstant);
    curve->KeySetInterpolation(2, Def::eInterpolationConstant);
    curve->KeySetConstantMode(2, Def::eConstantNext);
    curve->KeySetInterpolation(3, Def::eInterpolationCubic);
    curve->KeySet(4, curve->KeyGetTime(4), 55, Def::eInterpolationCubic, Def::eTangentBreak, 1, -2, Def::eWeightedAll,
                  0.25F, 0.5F);
    Node const file = read(binary7);
    std::vector<Node const*> const curves = file.at("Objects").all("AnimationCurve");
    Node const& written = *curves.at(2);
    EXPECT_EQ(written.at("Default").properties[0].number, 18);
    EXPECT_EQ(written.at("KeyTime").numbers().size(), 7U);
    EXPECT_EQ(written.at("KeyTime").numbers()[0], 1001.0 * frameTicks);
    EXPECT_EQ(written.at("KeyValueFloat").properties[0].code, 'f');
    EXPECT_EQ(written.at("KeyValueFloat").numbers()[1], 20);
    EXPECT_EQ(written.at("KeyAttrFlags").numbers(), (std::vector<double>{0x404, 0x2, 0x102, 0x408, 0x3000C08, 0x404}));
    EXPECT_EQ(written.at("KeyAttrRefCount").numbers(), (std::vector<double>{1, 1, 1, 1, 1, 2}));
    std::vector<double> const data = written.at("KeyAttrDataFloat").numbers();
    ASSERT_EQ(data.size(), 24U);
    EXPECT_NEAR(data[12], (55 - 30) * 24 / 2.0, 1e-4);
    EXPECT_NEAR(data[13], (60 - 40) * 24 / 2.0, 1e-4);
    EXPECT_EQ(data[16], 1);
    EXPECT_EQ(data[17], -2);
    auto const weights = [&](std::size_t entry)
    {
        std::uint32_t bits = 0;
        std::memcpy(&bits, written.at("KeyAttrDataFloat").properties[0].bytes.data() + entry * 16 + 8, 4);
        return bits;
    };
    EXPECT_EQ(weights(0), 0x0D050D05U);
    EXPECT_EQ(weights(4), 5000U << 16U | 2500U);
}

TEST_F(FbxExports, KeysOfVersion6AreOneList)
{
    shot();
    Node const file = read(binary6);
    Node const& take = file.at("Takes").at("Take");
    EXPECT_EQ(take.at("FileName").properties[0].text, "the_take.tak");
    EXPECT_EQ(take.at("LocalTime").properties[0].whole, 1001 * frameTicks);
    EXPECT_EQ(take.at("LocalTime").properties[1].whole, 1003 * frameTicks);
    Node const& model = take.at("Model");
    EXPECT_EQ(model.properties[0].text, fullName("top", "Model"));
    Node const& translation = model.at("Channel").at("Channel");
    EXPECT_EQ(translation.properties[0].text, "T");
    EXPECT_EQ(translation.at("LayerType").properties[0].whole, 1);
    std::vector<Node const*> const axes = translation.all("Channel");
    ASSERT_EQ(axes.size(), 3U);
    EXPECT_EQ(axes[1]->find("Key"), nullptr);
    EXPECT_EQ(axes[1]->at("Default").properties[0].number, 2);
    std::vector<FbxFile::Property> const& keys = axes[2]->at("Key").properties;
    EXPECT_EQ(axes[2]->at("KeyCount").properties[0].whole, 2);
    ASSERT_EQ(keys.size(), 6U);
    EXPECT_EQ(keys[0].whole, 1002 * frameTicks);
    EXPECT_EQ(keys[1].number, 3);
    EXPECT_EQ(keys[2].whole, 'L');
    EXPECT_EQ(model.all("Channel").at(1)->properties[0].text, "FocalLength");

    Node const& camera = object(file, "Model", fullName("top", "Model"));
    EXPECT_EQ(camera.property("FocalLength").properties.at(2).text, "A+N");
    EXPECT_EQ(camera.at("NodeAttributeName").properties[0].text, fullName("top", "NodeAttribute"));
    std::vector<std::string> links;
    for (Node const* one : file.at("Connections").all("Connect"))
    {
        links.push_back(one->properties[1].text + ">" + one->properties[2].text);
    }
    EXPECT_EQ(links, (std::vector<std::string>{fullName("carrier", "Model") + ">" + fullName("Scene", "Model"),
                                               fullName("top", "Model") + ">" + fullName("carrier", "Model")}));
}

TEST_F(FbxExports, SpansComeFromKeysUnlessTheyAreSet)
{
    shot();
    Node file = read(binary7);
    EXPECT_EQ(file.at("GlobalSettings").value("TimeSpanStart"), 1001.0 * frameTicks);
    EXPECT_EQ(file.at("GlobalSettings").value("TimeSpanStop"), 1003.0 * frameTicks);
    Node const& take = object(file, "AnimationStack", fullName("the take", "AnimStack"));
    EXPECT_EQ(take.value("LocalStart"), 1001.0 * frameTicks);
    EXPECT_EQ(take.value("ReferenceStop"), 1003.0 * frameTicks);
    stack->SetLocalTimeSpan({FbxTime(5), FbxTime(7)});
    scene->GetGlobalSettings().SetTimelineDefaultTimeSpan({FbxTime(1), FbxTime(9)});
    file = read(binary7);
    EXPECT_EQ(object(file, "AnimationStack", fullName("the take", "AnimStack")).value("LocalStop"), 7);
    EXPECT_EQ(file.at("GlobalSettings").value("TimeSpanStop"), 9);
}

TEST_F(FbxExports, ModesThatFewReadersKnowGoByTheirRate)
{
    struct
    {
        FbxTime::EMode mode;
        double customRate;
        double writtenMode;
        double writtenRate;
    } const cases[] = {
        {FbxTime::eDefaultMode, -1, FbxTime::eFrames30, -1},
        {FbxTime::eFilmFullFrame, -1, FbxTime::eFilmFullFrame, -1},
        {FbxTime::eCustom, 17, FbxTime::eCustom, 17},
        {FbxTime::eFrames96, -1, FbxTime::eCustom, 96},
        {FbxTime::eFrames59dot94, 12, FbxTime::eCustom, 60000 / 1001.0},
    };
    for (auto const& [mode, customRate, writtenMode, writtenRate] : cases)
    {
        scene->GetGlobalSettings().SetTimeMode(mode);
        scene->GetGlobalSettings().SetCustomFrameRate(customRate);
        Node const file = read(binary7);
        EXPECT_EQ(file.at("GlobalSettings").value("TimeMode"), writtenMode) << mode;
        EXPECT_EQ(file.at("GlobalSettings").value("CustomFrameRate"), writtenRate) << mode;
    }
    EXPECT_EQ(read(binary6).at("Objects").at("GlobalSettings").value("TimeMode"), FbxTime::eCustom);
}

TEST_F(FbxExports, AxesAreRightHandedWithYUpInBothVersions)
{
    scene->GetGlobalSettings().SetTimeMode(FbxTime::eFilmFullFrame);
    FbxSystemUnit::m.ConvertScene(scene);
    Node const file = read(binary7);
    Node const old = read(binary6);
    std::map<std::string, double> const expected{{"UpAxis", 1},           {"UpAxisSign", 1}, {"FrontAxis", 2},
                                                 {"FrontAxisSign", 1},    {"CoordAxis", 0},  {"CoordAxisSign", 1},
                                                 {"UnitScaleFactor", 100}};
    for (auto const& [name, value] : expected)
    {
        EXPECT_EQ(file.at("GlobalSettings").value(name), value) << name;
        EXPECT_EQ(old.at("Objects").at("GlobalSettings").value(name), value) << name;
    }
    EXPECT_EQ(old.at("Version5").at("Settings").at("FrameRate").properties[0].text, "23.976");
}

TEST_F(FbxExports, MeshesAreWrittenWithoutWhatIsBroken)
{
    FbxMesh* const mesh = quadAndTriangle("mesh");
    FbxGeometryElementUV* const byPoint = mesh->CreateElementUV("by point");
    byPoint->SetMappingMode(FbxLayerElement::eByControlPoint);
    FbxGeometryElementUV* const byCorner = mesh->CreateElementUV("by corner");
    byCorner->SetMappingMode(FbxLayerElement::eByPolygonVertex);
    byCorner->SetReferenceMode(FbxLayerElement::eIndexToDirect);
    mesh->CreateElementUV("of nothing")->GetDirectArray().Add(FbxVector2(1, 1));
    for (int i = 0; i < 5; ++i)
    {
        byPoint->GetDirectArray().Add(FbxVector2(0.1 * i, 1 - 0.1 * i));
    }
    byCorner->GetDirectArray().Add(FbxVector2(0, 0));
    byCorner->GetDirectArray().Add(FbxVector2(1, 0));
    for (int i = 0; i < mesh->GetPolygonVertexCount(); ++i)
    {
        byCorner->GetIndexArray().Add(i == 2 ? 77 : i % 2);
    }
    FbxNode* const carrier = node("mesh", mesh);
    carrier->AddMaterial(FbxSurfaceLambert::Create(scene, "a"));
    carrier->AddMaterial(FbxSurfaceLambert::Create(scene, "b"));
    for (int const format : {binary7, binary6})
    {
        Node const file = read(format);
        Node const& written = format == binary7 ? object(file, "Geometry", fullName("mesh", "Geometry"))
                                                : object(file, "Model", fullName("mesh", "Model"));
        EXPECT_EQ(written.at("Vertices").numbers(),
                  (std::vector<double>{0, 10, 20, 1, 11, 21, 2, 12, 22, 3, 13, 23, 4, 14, 24}));
        EXPECT_EQ(written.at("PolygonVertexIndex").numbers(), (std::vector<double>{0, 1, 2, -4, 4, 3, -3}));
        std::vector<Node const*> const uvs = written.all("LayerElementUV");
        ASSERT_EQ(uvs.size(), 2U);
        EXPECT_EQ(uvs[0]->at("Name").properties[0].text, "by point");
        EXPECT_EQ(uvs[0]->at("MappingInformationType").properties[0].text, "ByPolygonVertex");
        EXPECT_EQ(uvs[0]->at("UVIndex").numbers(), (std::vector<double>{0, 1, 2, 3, 4, 3, 2}));
        EXPECT_EQ(uvs[0]->at("UV").numbers().at(3), 0.9);
        EXPECT_EQ(uvs[1]->properties[0].whole, 1);
        EXPECT_EQ(uvs[1]->at("UVIndex").numbers(), (std::vector<double>{0, 1, 0, 1, 0, 1, 0}));
        EXPECT_EQ(written.at("LayerElementMaterial").at("Materials").numbers(), (std::vector<double>{0, 1}));
        EXPECT_EQ(written.all("Layer").size(), 2U);
    }
}

TEST_F(FbxExports, NamesAreUniqueAndOtherwiseAsGiven)
{
    std::string const many(10000, 'n');
    std::vector<std::string> const given{
        "a/b", "\"q\";=:x", "h\xc3\xa9 \xe6\x97\xa5", "", many, "dup", "dup", "dup_0001", "Scene", many};
    for (std::string const& name : given)
    {
        node(name.c_str());
    }
    for (int const format : {binary7, binary6})
    {
        std::vector<std::string> const written = models(read(format));
        ASSERT_EQ(written.size(), given.size());
        EXPECT_EQ(std::set<std::string>(written.begin(), written.end()).size(), given.size());
        EXPECT_EQ(std::vector<std::string>(written.begin(), written.begin() + 6),
                  std::vector<std::string>(given.begin(), given.begin() + 6));
        // The root of version 6.1 goes by that name.
        EXPECT_EQ(written[8] == "Scene", format == binary7);
    }
}

TEST_F(FbxExports, ManyOfOneNameAndDeepTreesTakeNoTime)
{
    constexpr int count = 100000;
    FbxNode* parent = nullptr;
    for (int i = 0; i < count; ++i)
    {
        FbxNode* const next = FbxNode::Create(scene, "n");
        (parent ? parent : scene->GetRootNode())->AddChild(next);
        parent = i < count / 2 ? next : parent;
    }
    EXPECT_NE(write(binary6).find(fullName("n_99999", "Model")), std::string::npos);
}

TEST_F(FbxExports, StereoRigsKnowTheirEyes)
{
    FbxCameraStereo* const rig = FbxCameraStereo::Create(scene, "rig");
    rig->Stereo.Set(FbxCameraStereo::eConverged);
    FbxCamera* const left = FbxCamera::Create(scene, "eye");
    FbxCamera* const right = FbxCamera::Create(scene, "eye");
    rig->SetLeftCamera(left);
    rig->SetRightCamera(right);
    key(left->FilmOffsetX, {1, 2});
    node("right", right, node("rig", rig));

    Node const file = read(binary7);
    std::map<std::int64_t, std::string> ends;
    for (Node const* one : file.at("Connections").all("C"))
    {
        if (one->properties.size() > 3)
        {
            ends[one->properties[1].whole] = one->properties[3].text;
        }
    }
    std::multiset<std::string> eyes;
    for (Node const* one : file.at("Objects").all("NodeAttribute"))
    {
        EXPECT_EQ(one->properties[2].text == "CameraStereo", one->find("Version") != nullptr);
        eyes.insert(one->properties[2].text + ends[one->properties[0].whole]);
    }
    EXPECT_EQ(eyes, (std::multiset<std::string>{"CameraLeftCamera", "CameraRightCamera", "CameraStereo"}));

    Node const old = read(binary6);
    std::set<std::string> links;
    for (Node const* one : old.at("Connections").all("Connect"))
    {
        if (one->properties[0].text == "OP")
        {
            EXPECT_EQ(one->properties[2].text, fullName("rig", "NodeAttribute"));
            links.insert(one->properties[1].text + one->properties[3].text);
        }
    }
    EXPECT_EQ(links, (std::set<std::string>{fullName("eye", "NodeAttribute") + "LeftCamera",
                                            fullName("right", "NodeAttribute") + "RightCamera"}));
    EXPECT_EQ(object(old, "NodeAttribute", fullName("eye", "NodeAttribute")).property("FilmOffsetX").properties[2].text,
              "A+");
}

TEST_F(FbxExports, WithoutAnimationThereAreNoCurves)
{
    shot();
    FbxIOSettings* const settings = FbxIOSettings::Create(manager.get(), IOSROOT);
    settings->SetBoolProp(EXP_FBX_ANIMATION, false);
    Node const file = FbxFile::Reader(write(binary7, settings)).root;
    EXPECT_TRUE(file.at("Objects").all("AnimationCurve").empty());
    EXPECT_TRUE(file.at("Takes").all("Take").empty());
    EXPECT_EQ(object(file, "Model", fullName("top", "Model")).property("Lcl Translation").properties.at(3).text, "A");
}

TEST_F(FbxExports, WhatCantBeWrittenIsSaid)
{
    shot();
    FbxExporter* const exporter = FbxExporter::Create(manager.get(), "");
    EXPECT_FALSE(exporter->Export(scene));
    EXPECT_FALSE(exporter->Initialize("", binary7));
    EXPECT_FALSE(exporter->Initialize("out.fbx", 2));
    EXPECT_EQ(exporter->GetStatus().GetCode(), FbxStatus::eInvalidParameter);

    std::string const missing = QFile::encodeName(folder.filePath(QStringLiteral("none/out.fbx"))).toStdString();
    ASSERT_TRUE(exporter->Initialize(missing.c_str()));
    EXPECT_FALSE(exporter->Export(nullptr));
    EXPECT_FALSE(exporter->Export(scene));
    EXPECT_EQ(exporter->GetStatus().GetErrorString(), missing + ": No such file or directory");
}

TEST_F(FbxExports, FileThatCantBeFinishedIsRemoved)
{
    shot();
    std::string const name = QFile::encodeName(folder.filePath(QStringLiteral("full.fbx"))).toStdString();
    FbxExporter* const exporter = FbxExporter::Create(manager.get(), "");
    ASSERT_TRUE(exporter->Initialize(name.c_str()));

    rlimit before{};
    getrlimit(RLIMIT_FSIZE, &before);
    rlimit const small{10000, before.rlim_max};
    auto const handler = std::signal(SIGXFSZ, SIG_IGN);
    setrlimit(RLIMIT_FSIZE, &small);
    bool const isWritten = exporter->Export(scene);
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);

    EXPECT_FALSE(isWritten);
    EXPECT_EQ(exporter->GetStatus().GetErrorString(), name + ": File too large");
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

}
