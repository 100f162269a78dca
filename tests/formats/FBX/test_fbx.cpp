// What neither the goldens nor the reader of FBX reach: refusals, warnings, choices, names,
// rigs, legacy solves, and values that a file can't hold.

#include "FBX/FBX3DExporterMaya.h"
#include "FBX/FBX3DExporterNuke.h"
#include "FbxTree.h"
#include "Host/KORV_Exception.h"
#include "Host/MessageBox.h"
#include "SolveBuilder.h"
#include "mtx/SFMEulerAngles.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QTemporaryDir>
#include <QVariant>

#include <any>
#include <limits>

using namespace Export;

namespace
{

constexpr double TICKS_PER_SECOND = 46186158000.0;

struct Warnings : Korvane::Callbacks
{
    KORV_MESSAGEBOX_REPLY warning(std::string const& title, std::string const& text,
                                  KORV_MESSAGEBOX_STYLE) const override
    {
        texts += QString::fromStdString(title + ": " + text);
        return KORV_MESSAGEBOX_REPLY_OK;
    }
    mutable QStringList texts;
};

using Options = QMap<QString, QVariant>;

Korvane::ExportedFiles run(SolveBuilder const& builder, std::vector<int> const& views = {0},
                           std::any const& options = {}, FBX3DExporterBase const& exporter = FBX3DExporterMaya7(),
                           std::shared_ptr<Korvane::Callbacks> const& callbacks = nullptr)
{
    MarloHost::HostServices services;
    services.callbacks = callbacks;
    auto const project = builder.make(QString(), services);
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    for (int const view : views)
    {
        spec.views.emplace_back(view);
    }
    spec.customData = options;
    return exporter.exportCameraSolve(*project, "out.fbx", spec, KV::CameraSolveExporter::AllObjects);
}

FbxTree tree(SolveBuilder const& builder, std::vector<int> const& views = {0}, std::any const& options = {},
             FBX3DExporterBase const& exporter = FBX3DExporterMaya7())
{
    return FbxTree(run(builder, views, options, exporter).files.value("out.fbx"));
}

Sabrel::Matrix33 matrixOf(Mtx_Vector4 const& degrees)
{
    return SFMEulerAngles::eul_to_matrix(SFMEulerAngles::eul_to_radians(degrees));
}

std::vector<double> ofModel(FbxTree const& file, char const* model, char const* property)
{
    return file.property(file.object("Model", model), property);
}

SolveBuilder rig(bool isConverged)
{
    SolveBuilder builder(11);
    builder.model.views = QStringList{"left", "right"};
    builder.solve().stereo.emplace();
    builder.solve().stereo->converged = isConverged;
    builder.solve().stereo->separation = {0.5, {0, 5, 10}, {0.5, 0.75, 1}};
    builder.solve().stereo->convergence.value = 0.0;
    builder.solve().stereo->shift[0] = {96, {2, 4}, {96, 192}};
    return builder;
}

TEST(FBX, RatesThatItLacksAreToldAndTheNearestIsTaken)
{
    struct Case
    {
        double rate;
        int mode;
        QString warning;
    };
    for (Case const& c : {Case{24, 11, ""}, Case{23.976, 13, ""}, Case{30000 / 1001.0, 8, ""}, Case{30, 6, ""},
                          Case{1000, 12, ""}, Case{60000 / 1001.0, 14, ""}, Case{25.005, 10, ""},
                          Case{17, 13,
                               "FBX exporter: Warning: FBX 7.7.0 does not support 17 fps. Solve will be exported as "
                               "23.976 fps"},
                          Case{49, 4,
                               "FBX exporter: Warning: FBX 7.7.0 does not support 49 fps. Solve will be exported as "
                               "50 fps"}})
    {
        SolveBuilder builder(3);
        builder.turnCamera();
        builder.model.frameRate = c.rate;
        builder.clip().frameOffset = 1001;
        auto const warnings = std::make_shared<Warnings>();
        FbxTree const file(run(builder, {0}, {}, FBX3DExporterMaya7(), warnings).files.value("out.fbx"));
        EXPECT_EQ(warnings->texts, c.warning.isEmpty() ? QStringList() : QStringList(c.warning)) << c.rate;
        FbxTree::Node const* const settings = file.settings();
        EXPECT_EQ(file.property(settings, "TimeMode").at(0), c.mode) << c.rate;
        double const rate = file.property(settings, "CustomFrameRate").at(0);
        auto const curve = file.curve(file.object("Model", "MarloCameraNode"), "Lcl Translation", "d|X");
        ASSERT_EQ(curve.ticks.size(), 3U);
        EXPECT_NEAR(curve.ticks[2], 1003 / rate * TICKS_PER_SECOND, 1) << c.rate;
    }
}

TEST(FBX, RefusesWhatItCannotExportWithItsOwnWords)
{
    SolveBuilder unsolved;
    unsolved.model.solve.reset();
    try
    {
        run(unsolved);
        FAIL() << "was exported";
    }
    catch (KORV_OperationFailed const& error)
    {
        EXPECT_EQ(error.message(), "No 3D solution ready, please solve the scene first");
    }
    EXPECT_THROW(run(SolveBuilder(), {0}, 17), std::bad_any_cast);

    QTemporaryDir folder;
    QByteArray const before = qgetenv("TMPDIR");
    QFile blocker(folder.filePath("file"));
    ASSERT_TRUE(blocker.open(QIODevice::WriteOnly));
    qputenv("TMPDIR", blocker.fileName().toUtf8());
    try
    {
        run(SolveBuilder());
        ADD_FAILURE() << "was exported";
    }
    catch (KORV_OperationFailed const& error)
    {
        EXPECT_EQ(error.message(), "FBX exporter could not open a temporary file");
    }
    qputenv("TMPDIR", folder.path().toUtf8());
    run(SolveBuilder());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList("file")) << "the temporary file stays";
    before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
}

struct Declared final : KV::ExportOptionsReceiver
{
    void addBoolOption(QString const& key, QString const&, QString const&, bool value) override
    {
        options += key + (value ? "+" : "-");
    }
    void addChoiceOption(QString const& key, QString const&, QString const&, QStringList const& choices) override
    {
        options += key + "=" + choices.join('|');
    }
    QStringList options;
};

TEST(FBX, OptionsAreDeclaredAndFollowed)
{
    Declared maya;
    FBX3DExporterMaya6().setUserOptions(maya);
    EXPECT_EQ(maya.options, (QStringList{"includeFeatures+", "useReferenceFrame+", "sceneAtOrigin-",
                                         "pointSizeMode=suggested|fixed"}));
    Declared nuke;
    FBX3DExporterNuke().setUserOptions(nuke);
    maya.options.removeAt(2);
    EXPECT_EQ(nuke.options, maya.options);

    SolveBuilder builder;
    builder.addPoints("Wall", {0, 0, 0}).addFeatures("set", {0, 0, -10});
    builder.poseScene();
    builder.layer().surfacePoints->frames = {0, 4};
    builder.layer().surfacePoints->positions = {0, 0, 0, 4, 0, 0};
    builder.solve().referenceFrame = 3;
    auto const meshX = [](FbxTree const& file)
    { return FbxTree::array(file.object("Geometry", "Wall_Surface"), "Vertices").at(0); };

    FbxTree const bare = tree(builder);
    EXPECT_EQ(ofModel(bare, "Point 1", "Lcl Scaling").at(0), 0.01);
    EXPECT_NE(bare.object("Model", "Feature 1"), nullptr);
    EXPECT_EQ(ofModel(bare, "MarloScene", "Lcl Scaling").at(0), 2.5);
    EXPECT_EQ(meshX(bare), 0);
    EXPECT_TRUE(bare.curve(bare.object("Model", "Wall"), "Lcl Translation", "d|X").ticks.empty()) << "is at rest";
    EXPECT_EQ(bare.curve(bare.object("Model", "Point 1"), "Lcl Translation", "d|X").ticks.size(), 10U);
    EXPECT_TRUE(bare.curve(bare.object("Model", "Feature 1"), "Lcl Translation", "d|X").ticks.empty());

    FbxTree const chosen = tree(
        builder, {0}, Options{{"useReferenceFrame", true}, {"sceneAtOrigin", true}, {"pointSizeMode", "suggested"}});
    EXPECT_EQ(chosen.object("Model", "Feature 1"), nullptr);
    EXPECT_EQ(ofModel(chosen, "MarloScene", "Lcl Scaling").at(0), 1);
    EXPECT_EQ(meshX(chosen), 3);
    // 36 mm of film at 35 mm; the camera and the point are at one place, so there is no distance.
    EXPECT_NEAR(ofModel(chosen, "Point 1", "Lcl Scaling").at(0), 0.2 * 36 / 35, 1e-12);
    FbxTree const both = tree(builder, {0}, Options{{"includeFeatures", true}, {"pointSizeMode", "suggested"}});
    EXPECT_NEAR(ofModel(both, "Point 1", "Lcl Scaling").at(0), 5 * 0.2 * 36 / 35, 1e-12);
}

TEST(FBX, ViewsDecideWhichCameraThereIs)
{
    SolveBuilder mono;
    Korvane::ExportedFiles const alone = run(mono, {0}, Options{{"pointSizeMode", "suggested"}});
    EXPECT_EQ(alone.messages, QStringList()) << "without points";
    EXPECT_EQ(FbxTree(alone.files["out.fbx"]).parentOf("MarloCameraNode"), "MarloScene");
    Korvane::ExportedFiles const pair = run(mono, {0, 1});
    EXPECT_EQ(pair.messages, QStringList("out.fbx: The file has no camera, as the solve has none for these views"));
    EXPECT_EQ(FbxTree(pair.files["out.fbx"]).object("Model", "MarloCameraNode"), nullptr);

    SolveBuilder stereo = rig(true);
    stereo.solve().camera.pose.positions = {1, 2, 3};
    stereo.addPoints("Wall", {1, 2, 3});
    EXPECT_EQ(run(stereo, {2}).messages.size(), 1) << "a view without an eye";
    FbxTree const eye = tree(stereo, {1});
    EXPECT_EQ(ofModel(eye, "MarloCameraNode", "Lcl Translation"), (std::vector<double>{125, 200, 300}));
    EXPECT_EQ(ofModel(eye, "Point 1", "Lcl Translation"), (std::vector<double>{100, 200, 300}));
    EXPECT_EQ(FbxTree::array(eye.object("Geometry", "Wall_Surface"), "Vertices"), (std::vector<double>{100, 200, 300}));
    FbxTree const sized = tree(stereo, {1}, Options{{"pointSizeMode", "suggested"}});
    EXPECT_NEAR(ofModel(sized, "Point 1", "Lcl Scaling").at(0), 25 * 0.2 * 36 / 35, 1e-12);
    FbxTree const both = tree(stereo, {0, 1});
    EXPECT_EQ(ofModel(both, "MarloCameraNode", "Lcl Translation"), (std::vector<double>{1, 2, 3}));
}

TEST(FBX, ARigHasItsDistancesAndShiftsAtTheKeysOfTheProject)
{
    SolveBuilder builder = rig(true);
    builder.model.playbackIn = 0;
    builder.model.playbackOut = 7;
    builder.solve().stereo->convergence = {0, {0, 4}, {0, 60}};
    FbxTree const file = tree(builder, {0, 1});
    auto const* const camera = file.object("NodeAttribute", "stereoCamera");
    EXPECT_EQ(file.property(camera, "Stereo").at(0), 1);
    auto const frames = [](FbxTree::Curve const& curve)
    {
        std::vector<int> list;
        for (double const ticks : curve.ticks)
        {
            list.push_back(static_cast<int>(std::lround(ticks / TICKS_PER_SECOND * 24)));
        }
        return list;
    };
    auto const separation = file.curve(camera, "InteraxialSeparation", "d|InteraxialSeparation");
    EXPECT_EQ(frames(separation), (std::vector<int>{0, 5})) << "none behind the playback range";
    EXPECT_EQ(separation.values, (std::vector<double>{0.5, 0.75}));
    auto const crossing = file.curve(camera, "ZeroParallax", "d|ZeroParallax");
    EXPECT_EQ(frames(crossing), (std::vector<int>{0, 4, 5}));
    EXPECT_EQ(crossing.values.at(0), static_cast<double>(std::numeric_limits<float>::max()));
    EXPECT_NEAR(crossing.values.at(1), 0.7 / (2 * std::tan(3.14159265358979 / 6)), 1e-6);
    EXPECT_NEAR(crossing.values.at(2), 0.75 / (2 * std::tan(3.14159265358979 / 6)), 1e-6);
    auto const* const left = file.object("NodeAttribute", "MarloLeftCamera");
    auto const shift = file.curve(left, "FilmOffsetX", "d|FilmOffsetX");
    EXPECT_EQ(frames(shift), (std::vector<int>{2, 4}));
    EXPECT_NEAR(shift.values.at(1), -0.1, 1e-8);
    EXPECT_EQ(file.property(file.object("NodeAttribute", "MarloRightCamera"), "FilmOffsetX").at(0), 0);

    FbxTree const parallel = tree(rig(false), {0, 1});
    auto const* const apart = parallel.object("NodeAttribute", "stereoCamera");
    EXPECT_EQ(parallel.property(apart, "Stereo").at(0), 3);
    EXPECT_TRUE(parallel.curve(apart, "ZeroParallax", "d|ZeroParallax").ticks.empty());
}

TEST(FBX, RotationsOfTheAxesThatEachProgramExpects)
{
    Mtx_Vector4 const angles{20, -35, 130, 0};
    auto const about = [](double y) { return matrixOf({0, y, 0, 0}); };
    Sabrel::Matrix33 const plain = matrixOf(angles);
    // Legacy angles are (x, -y, z) of the transposed rotation.
    Sabrel::Matrix33 const old = matrixOf({20, 35, 130, 0}).transposed();
    FBX3DExporterMaya7 const maya;
    FBX3DExporterNuke const nuke;
    struct Case
    {
        char const* name;
        Mtx_Vector4 found;
        Sabrel::Matrix33 expected;
    };
    for (Case const& c : {
             Case{"camera", maya.adjustCameraRotation(angles, false, false), plain * about(90)},
             Case{"object", maya.adjustObjectRotation(angles, false, false), plain * about(180)},
             Case{"rig", maya.adjustCameraRotation(angles, true, false), plain},
             Case{"object of a rig", maya.adjustObjectRotation(angles, true, false), plain},
             Case{"old camera", maya.adjustCameraRotation(angles, false, true), old * about(90)},
             Case{"old object", maya.adjustObjectRotation(angles, false, true), old * about(180)},
             Case{"old rig", maya.adjustCameraRotation(angles, true, true), old},
             Case{"Nuke", nuke.adjustCameraRotation(angles, false, false), plain},
             Case{"old in Nuke", nuke.adjustObjectRotation(angles, false, true), old},
         })
    {
        Sabrel::Matrix33 const found = matrixOf(c.found);
        for (std::size_t i = 0; i < 9; ++i)
        {
            EXPECT_NEAR(found.m[i], c.expected.m[i], 1e-12) << c.name << " " << i;
        }
    }
}

TEST(FBX, AnglesGoOnThroughThePolesAndPastHalfATurn)
{
    // A level camera that looks along the z axis, either way, stands on a pole of the file's
    // angles: frames 1, 2, 5, 6. From then on it rolls.
    std::vector<double> turns{20, 30, 40, 0, 0, 50, 0, 0, 70, 0, 60, 70, 0, 120, 70, 0, 180, 70, 0, 180, 90};
    for (int frame = 7; frame < 20; ++frame)
    {
        turns.insert(turns.end(), {0, 250, 60.0 * frame});
    }
    SolveBuilder builder(20);
    MarloHost::PoseModel& pose = builder.solve().camera.pose;
    pose.rotations = turns;
    pose.positions.resize(turns.size());
    for (int frame = 0; frame < 20; ++frame)
    {
        pose.frames.push_back(frame);
    }
    FbxTree const file = tree(builder);
    auto const key = [&](char const* channel, std::size_t frame)
    { return file.curve(file.object("Model", "MarloCameraNode"), "Lcl Rotation", channel).values.at(frame); };
    for (std::size_t frame = 0; frame < 20; ++frame)
    {
        Mtx_Vector4 const found{key("d|X", frame), key("d|Y", frame), key("d|Z", frame), 0};
        double const* const turn = &turns[3 * frame];
        Sabrel::Matrix33 const expected = matrixOf({turn[0], turn[1], turn[2], 0}) * matrixOf({0, 90, 0, 0});
        for (std::size_t i = 0; i < 9; ++i)
        {
            EXPECT_NEAR(matrixOf(found).m[i], expected.m[i], 1e-6) << "frame " << frame;
        }
        bool const isPole = frame == 1 || frame == 2 || frame == 5 || frame == 6;
        EXPECT_LT(std::abs(found.z - key("d|Z", frame - (frame > 0))), isPole ? 1e-6 : 181) << "frame " << frame;
        double const step = frame > 7 ? found.z - key("d|Z", frame - 1) : 60;
        EXPECT_NEAR(std::abs(step), 60, 1e-4) << "frame " << frame;
    }
}

TEST(FBX, ALegacySolveHangsOnTheRootAndStartsWhereItsCameraDoes)
{
    SolveBuilder builder;
    builder.poseScene().addPoints("Wall", {4, 6, 8}).addFeatures("set", {0, 0, 0});
    builder.solve().camera.pose.positions = {1, 2, 3};
    builder.solve().legacy = true;
    FbxTree const file = tree(builder);
    EXPECT_EQ(file.object("Model", "MarloScene"), nullptr);
    EXPECT_EQ(file.object("Model", "Wall"), nullptr);
    EXPECT_EQ(file.object("Model", "Feature 1"), nullptr);
    EXPECT_EQ(file.parentOf("Point 1"), QByteArray());
    EXPECT_EQ(ofModel(file, "MarloCameraNode", "Lcl Translation"), (std::vector<double>{0, 0, 0}));
    EXPECT_EQ(ofModel(file, "Point 1", "Lcl Translation"), (std::vector<double>{3, 4, 5}));
    EXPECT_EQ(FbxTree::array(file.object("Geometry", "Wall_Surface"), "Vertices"), (std::vector<double>{3, -4, -5}));
    EXPECT_EQ(file.property(file.settings(), "UnitScaleFactor").at(0), 1);
    auto const* const camera = file.object("NodeAttribute", "camera");
    EXPECT_EQ(file.property(camera, "ApertureMode").at(0), 1);
    EXPECT_NEAR(file.property(camera, "FieldOfView").at(0), 54.432223, 1e-5) << "36 mm at 35 mm";
}

TEST(FBX, WhatMovesHangsInItsGroupAndItsScaleIsKeyed)
{
    SolveBuilder builder(11);
    builder.addMovingChain();
    builder.solve().assets.push_back({"a/hat.v2.obj", "door", {{}, {0, 1, 0}, {}, {}}});
    FbxTree const file = tree(builder);
    EXPECT_EQ(file.parentOf("hat"), "door");
    EXPECT_EQ(file.parentOf("door"), "car");
    EXPECT_EQ(file.parentOf("car"), "MarloScene");
    auto const scale = file.curve(file.object("Model", "car"), "Lcl Scaling", "d|Y");
    ASSERT_EQ(scale.values.size(), 11U);
    EXPECT_EQ(scale.values[5], 2);
    EXPECT_TRUE(file.curve(file.object("Model", "door"), "Lcl Scaling", "d|Y").ticks.empty());

    builder.layer().surfacePoints.reset();
    EXPECT_TRUE(run(builder).messages.value(0).endsWith("at the origin: hat")) << "the carrier isn't exported";
}

TEST(FBX, FilmIsSqueezedAsPixelsAre)
{
    SolveBuilder builder;
    builder.clip().pixelAspect = 2;
    builder.clip().filmBack = MarloHost::FilmBackModel{50, 20};
    auto const ofCamera = [&](char const* property)
    {
        FbxTree const file = tree(builder);
        return FbxTree::property(file.object("NodeAttribute", "camera"), property).at(0);
    };
    EXPECT_EQ(ofCamera("AspectWidth"), 3840);
    EXPECT_EQ(ofCamera("AspectHeight"), 1080);
    EXPECT_EQ(ofCamera("FilmSqueezeRatio"), 2);
    EXPECT_NEAR(ofCamera("FilmWidth"), 25 / 25.4, 1e-6);
    EXPECT_NEAR(ofCamera("FilmHeight"), 50 / 25.4 * 1080 / 3840, 1e-6);
    builder.solve().legacy = true;
    EXPECT_EQ(ofCamera("AspectWidth"), 3840);
    EXPECT_NEAR(ofCamera("FilmWidth"), 40 / 25.4, 1e-6) << "no wider film in old solves";
    EXPECT_NEAR(ofCamera("FilmHeight"), 16 / 25.4, 1e-6);
}

TEST(FBX, AMeshHasFacesAndTheUVsOfItsPoints)
{
    SolveBuilder builder;
    builder.addPoints("Wall", {7, 7, 7});
    MarloHost::PointCloudModel mesh;
    mesh.positions = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0};
    mesh.faceCounts = {3, 3};
    mesh.faceIndices = {0, 1, 2, 3, 0, 2};
    mesh.uvs = {0, 0.125, 1, 0.25, 1, 0.5, 0, 0.75};
    builder.layer().meshPoints = mesh;
    FbxTree const file = tree(builder);
    FbxTree::Node const* const geometry = file.object("Geometry", "Wall_TrackMesh");
    EXPECT_EQ(FbxTree::array(geometry, "Vertices"), mesh.positions);
    EXPECT_EQ(FbxTree::array(geometry, "PolygonVertexIndex"), (std::vector<double>{0, 1, -3, 3, 0, -3}));
    FbxTree::Node const* const uvs = geometry->find("LayerElementUV");
    EXPECT_EQ(FbxTree::array(uvs, "UV"), mesh.uvs);
    EXPECT_EQ(FbxTree::array(uvs, "UVIndex"), (std::vector<double>{0, 1, 2, 3, 0, 2}));
    EXPECT_EQ(file.parentOf("Wall_TrackMesh"), "Wall");
}

TEST(FBX, NamesAreUniqueAndCleanAndToldOnce)
{
    SolveBuilder builder;
    builder.addPoints("MarloScene", {0, 0, 0, 1, 0, 0, 2, 0, 0});
    QString const odd = "a/b;=\"c\"\x01\n" + QString::fromUtf8("Ä日") + QString(10000, 'x');
    builder.layer().surfacePoints->names = QStringList{"twin", "twin", odd};
    Korvane::ExportedFiles const result = run(builder);
    EXPECT_EQ(result.messages,
              QStringList("out.fbx: Several objects have one name, so that some got numbers: MarloScene, twin"));
    EXPECT_EQ(result.failedCount, 0);
    FbxTree const file(result.files["out.fbx"]);
    EXPECT_EQ(file.parentOf("MarloScene_0001"), "MarloScene");
    EXPECT_NE(file.object("Model", "twin_0002"), nullptr);
    SolveBuilder root;
    root.addPoints("Scene", {0, 0, 0});
    EXPECT_EQ(run(root).messages.size(), 0);
    EXPECT_EQ(run(root, {0}, {}, FBX3DExporterMaya6()).messages.size(), 1) << "is what 6.1 calls the root";
    EXPECT_NE(file.object("Model", QString(odd).replace('\x01', '_').replace('\n', '_').toUtf8()), nullptr);
}

TEST(FBX, ValuesThatKeysCannotHoldAreLeftOutAndCounted)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    SolveBuilder builder(3);
    builder.addPoints("Wall", {nan, 0, 0, 1, 0, 0});
    builder.layer().surfacePoints->names = QStringList{"bad", "good"};
    builder.solve().camera.pose.frames = {0, 1, 2};
    builder.solve().camera.pose.positions = {nan, 0, 0, 1e39, 0, 0, 5, 0, 0};
    Korvane::ExportedFiles const result = run(builder);
    EXPECT_EQ(result.failedCount, 4) << "two keys, a point, a mesh";
    FbxTree const file(result.files["out.fbx"]);
    EXPECT_EQ(ofModel(file, "MarloCameraNode", "Lcl Translation").at(0), 5);
    EXPECT_EQ(file.curve(file.object("Model", "MarloCameraNode"), "Lcl Translation", "d|X").values,
              std::vector<double>{5});
    EXPECT_EQ(file.object("Model", "bad"), nullptr);
    EXPECT_NE(file.object("Model", "good"), nullptr);
    EXPECT_EQ(file.object("Geometry", "Wall_Surface"), nullptr);
}

TEST(FBX, SaysWhereSingleFloatsShow)
{
    for (double const x : {1000.3, 1000000.3})
    {
        SolveBuilder builder;
        builder.addPoints("Wall", {x, 0, 0}).addPoints("Other", {x + 0.1, 0, 0});
        builder.layer().surfacePoints->names = QStringList("other");
        builder.solve().camera.pose.positions = {x, 0, 10};
        QStringList const messages = run(builder).messages;
        EXPECT_EQ(messages.size(), x > 10000 ? 1 : 0) << x << messages.join("; ").toStdString();
        EXPECT_EQ(messages.value(0).contains("0.012 units"), x > 10000) << messages.value(0).toStdString();
    }
}

}
