// Camera solves as USD stages: what names become, what options do, and what the user is told. What moves is
// judged by the reader.

#include "Interchange/USDCameraSolveExporter.h"
#include "SolveBuilder.h"

#include <gtest/gtest.h>

#include <QMap>
#include <QRegularExpression>
#include <QVariant>

#include <limits>
#include <stdexcept>

using namespace Export;

namespace
{

using Options = QMap<QString, QVariant>;

Korvane::ExportedFiles run(ProjectBuilder const& builder, std::any const& options = {},
                           std::vector<Anm::View> const& views = {Anm::View::defaultView()})
{
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.views = views;
    spec.customData = options;
    return USDCameraSolveExporter().exportCameraSolve(*builder.make(), "out.usda", spec,
                                                      KV::CameraSolveExporter::AllObjects);
}

QString textOf(ProjectBuilder const& builder, std::any const& options = {})
{
    return QString::fromUtf8(run(builder, options).files.value("out.usda"));
}

// Every prim as "TYPE path", in the order of the text.
QStringList primsOf(QString const& text)
{
    static QRegularExpression const definition("^( *)def (\\w*) ?\"(\\w+)\"$");
    QStringList prims;
    QStringList path;
    for (QString const& line : text.split('\n'))
    {
        QRegularExpressionMatch const match = definition.match(line);
        if (match.hasMatch())
        {
            path = path.mid(0, match.captured(1).size() / 4) << match.captured(3);
            prims += match.captured(2) + " /" + path.join('/');
        }
    }
    return prims;
}

// What the attribute of the prim is, on one line.
QString valueOf(QString const& text, QString const& prim, QString const& attribute)
{
    QRegularExpression const found("\"" + prim + "\"\n *\\{\n(?:(?! *def).*\n)*? *" +
                                   QRegularExpression::escape(attribute) +
                                   "(?:\\.timeSamples)? = ([^{\n]+|\\{[^}]*\\})");
    return found.match(text).captured(1).simplified();
}

TEST(Usd, NamesBecomeIdentifiers)
{
    for (auto const& [name, prim, model] :
         {std::tuple(QString("1 plane"), "L1_plane", "__plane"),
          std::tuple(QString("Wall\"a\";b=c"), "Wall_a__b_c", "Wall_a__b_c"),
          std::tuple(QString::fromUtf8("Stra\u00dfe \U0001F600 2"), "Stra_e___2", "Stra_e____"),
          std::tuple(QString("_a"), "_a", "_a")})
    {
        SolveBuilder builder;
        builder.addPoints(name, {0, 0, 0});
        builder.solve().assets.push_back({"models/" + name + ".obj", name});
        QStringList const prims = primsOf(textOf(builder));
        EXPECT_EQ(prims.value(3).toStdString(), std::string("Xform /MarloExport/") + prim);
        EXPECT_EQ(prims.value(5).toStdString(), std::string("Xform /MarloExport/") + prim + "/" + model);
    }
    QString const longest(10000, ' ');
    EXPECT_EQ(primsOf(textOf(SolveBuilder().addPoints(longest, {0, 0, 0}))).value(3),
              "Xform /MarloExport/" + QString(10000, '_'));
    EXPECT_EQ(primsOf(textOf(SolveBuilder().addPoints("a/b", {0, 0, 0}))).value(3), "Xform /MarloExport/a_b");
}

TEST(Usd, NamesAreUniqueAmongSiblingsAndToldOnce)
{
    SolveBuilder builder;
    builder.addPoints("a b", {0, 0, 0, 1, 1, 1}).addPoints("a/b", {0, 0, 0}).addPoints("SolvedFeatures", {0, 0, 0});
    builder.model.layers[0].surfacePoints->names = QStringList{"p q", "p.q"};
    Korvane::ExportedFiles const result = run(builder);
    QStringList const prims = primsOf(QString::fromUtf8(result.files.first()));
    EXPECT_EQ(prims, (QStringList{"Xform /MarloExport", "Xform /MarloExport/CameraTransform",
                                  "Camera /MarloExport/CameraTransform/Camera", "Xform /MarloExport/a_b",
                                  "Xform /MarloExport/a_b/p_q", "Xform /MarloExport/a_b/p_q_0001",
                                  "Xform /MarloExport/a_b_0002", "Xform /MarloExport/a_b_0002/Point_1",
                                  "Xform /MarloExport/SolvedFeatures_0003",
                                  "Xform /MarloExport/SolvedFeatures_0003/Point_1"}));
    ASSERT_EQ(result.messages.size(), 1);
    EXPECT_EQ(result.messages[0],
              "out.usda: Several objects would have one name: /MarloExport/a_b/p_q, /MarloExport/a_b, "
              "/MarloExport/SolvedFeatures. All but the first got a number behind it.");
    EXPECT_TRUE(run(SolveBuilder().addPoints("one", {0, 0, 0}).addPoints("two", {0, 0, 0})).messages.isEmpty());
}

TEST(Usd, ModelsStandUnderTheirLayersAndKeepDigitsWhereTheseTellThemApart)
{
    SolveBuilder builder;
    builder.addLayer("car");
    builder.layer().moving = true;
    builder.layer().pose.positions = {0, 0, -4};
    MarloHost::PoseModel pose;
    pose.positions = {1, 2, 3};
    for (auto const& [path, layer] :
         {std::pair("m/lamp.v2.obj", ""), std::pair("tree1.obj", ""), std::pair("tree2.obj", ""),
          std::pair("wheel1.obj", "car"), std::pair("2x.obj", "")})
    {
        builder.solve().assets.push_back({path, layer, pose});
    }
    QString const text = textOf(builder);
    EXPECT_EQ(primsOf(text).mid(3),
              (QStringList{"Xform /MarloExport/car", "Xform /MarloExport/car/wheel_", "Xform /MarloExport/lamp",
                           "Xform /MarloExport/tree1", "Xform /MarloExport/tree2", "Xform /MarloExport/_x"}))
        << text.toStdString();
    EXPECT_EQ(valueOf(text, "car", "double3 xformOp:translate"), "(0, 0, -4)");
    EXPECT_EQ(valueOf(text, "wheel_", "double3 xformOp:translate"), "(1, 2, 3)");
}

TEST(Usd, TheRangeIsThePlaybackRangeInShownNumbers)
{
    SolveBuilder builder(10);
    builder.addPoints("short", {0, 0, 0}).range(4, 5);
    builder.clip().frameOffset = 1001;
    builder.model.playbackIn = 2;
    builder.model.playbackOut = 7;
    builder.model.frameRate = 29.97;
    QString const text = textOf(builder);
    for (char const* const line :
         {"startTimeCode = 1003", "endTimeCode = 1008", "framesPerSecond = 29.97", "timeCodesPerSecond = 29.97"})
    {
        EXPECT_TRUE(text.contains(QString("    %1\n").arg(line))) << line;
    }
    EXPECT_TRUE(valueOf(text, "CameraTransform", "double3 xformOp:translate").startsWith("{ 1001: (0, 0, 0), 1002:"));
}

TEST(Usd, WhatIsMissingOrLeftOutIsTold)
{
    try
    {
        run(ProjectBuilder().addLayer("unsolved"));
        FAIL() << "a file without a camera";
    }
    catch (std::runtime_error const& failure)
    {
        EXPECT_STREQ(failure.what(), "No scene camera found. Perhaps the scene is not camera solved?");
    }
    EXPECT_THROW(run(SolveBuilder(), 17), std::bad_any_cast);

    SolveBuilder rig;
    rig.model.views = QStringList{"left", "right"};
    rig.solve().stereo = MarloHost::StereoModel();
    Korvane::ExportedFiles const result = run(rig, {}, {Anm::View(1)});
    EXPECT_EQ(result.messages,
              QStringList("out.usda: The camera is that of the stereo rig, which stands between the eyes."));

    SolveBuilder points;
    points.addPoints("wall", {0, 0, 0});
    points.layer().surfacePoints->inaccurate = {0};
    EXPECT_TRUE(run(points).messages.value(0).endsWith("wall: Point 1"));
}

// NaN and infinities, what becomes infinite as a single, and nothing that merely becomes small.
TEST(Usd, ValuesThatNobodyReadsAreLeftOutAndCounted)
{
    double const nan = std::numeric_limits<double>::quiet_NaN();
    SolveBuilder builder(3);
    builder.addPoints("wall", {nan, 0, 0, 1, 1e-310, 0, 1e-40, 2, 0});
    builder.layer().pose.positions = {0, 0, 1e300};
    builder.layer().pose.rotations = {1e-44, 0, 0};
    builder.layer().meshPoints.emplace();
    builder.layer().meshPoints->positions = {0, 0, 0, 1e39, 0, 0, 0, 1, 0};
    builder.layer().meshPoints->faceCounts = {3};
    builder.layer().meshPoints->faceIndices = {0, 1, 2};
    builder.layer().meshPoints->uvs = {0, 0, 1, 0, 0, nan};
    builder.solve().camera.focalLength = {35, {0, 1, 2}, {35, 36, nan}};
    Korvane::ExportedFiles const result = run(builder);
    QString const text = QString::fromUtf8(result.files.first());
    EXPECT_FALSE(text.contains(QRegularExpression("nan|inf|e-3")));
    EXPECT_EQ(valueOf(text, "wall", "double3 xformOp:translate"), "(0, 0, 1e300)");
    EXPECT_EQ(valueOf(text, "Point_3", "double3 xformOp:translate"), "(1e-40, 2, 0)");
    EXPECT_EQ(valueOf(text, "Camera", "float focalLength"), "{ 0: 35, }");
    // Two points, two frames of the lens, the mesh, its UVs.
    EXPECT_EQ(result.failedCount, 6);
}

TEST(Usd, OptionsDecideWhatIsInTheFile)
{
    SolveBuilder builder;
    builder.poseScene().addPoints("wall", {0, 0, -10}).addFeatures("set", {0, 0, -10});
    builder.solve().camera.focalLength.value = 18;
    QString const byDefault = textOf(builder);
    EXPECT_EQ(valueOf(byDefault, "MarloExport", "float3 xformOp:scale"), "(2.5, 2.5, 2.5)");
    EXPECT_TRUE(byDefault.contains("\"SolvedFeatures\""));
    EXPECT_EQ(valueOf(byDefault, "Point_1", "float3 xformOp:scale"), "(0.01, 0.01, 0.01)");

    KV::StringsUI const ui = KV::CameraSolveExporter::UI();
    QString const chosen =
        textOf(builder, Options{{ui.sceneAtOrigin.key, true}, {ui.pointSizeMode.key, ui.pointSizeSuggested}});
    EXPECT_FALSE(chosen.contains("2.5"));
    EXPECT_FALSE(chosen.contains("\"SolvedFeatures\""));
    // A fifth of the picture, which is twice as wide as its lens is long, in a distance of 10.
    EXPECT_EQ(valueOf(chosen, "Point_1", "float3 xformOp:scale"), "(4, 4, 4)");
    EXPECT_EQ(valueOf(chosen, "Camera", "float2 clippingRange"), "(0.01, 10000)");
}

TEST(Usd, ALegacySolveHasOrdinaryAxesAndMillimetres)
{
    SolveBuilder builder;
    builder.turnCamera().poseScene().addMovingChain();
    builder.clip().pixelAspect = 2;
    QString const now = textOf(builder);
    builder.solve().legacy = true;
    builder.addFeatures("set", {0, 0, 0});
    QString const before = textOf(builder);
    EXPECT_FALSE(before.contains("\"SolvedFeatures\"")) << "legacy features aren't exported";
    static QRegularExpression const number("-?\\d+(?:\\.\\d+)?(?:e-?\\d+)?");
    QString shapeNow = now;
    QString shapeBefore = before;
    EXPECT_EQ(shapeBefore.replace(number, "#"), shapeNow.replace(number, "#"));
    QRegularExpressionMatchIterator a = number.globalMatch(now);
    QRegularExpressionMatchIterator b = number.globalMatch(before);
    while (a.hasNext() && b.hasNext())
    {
        double const expected = a.next().captured().toDouble();
        double const found = b.next().captured().toDouble();
        ASSERT_NEAR(found, expected, 1e-6 * (1 + std::abs(expected)));
    }
}

TEST(Usd, MeshesHaveASamplePerFrameAndUVsPerCorner)
{
    SolveBuilder builder(2);
    builder.addLayer("wall");
    auto& mesh = builder.layer().meshPoints.emplace();
    mesh.frames = {0, 1};
    mesh.positions = {0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 2, 0};
    mesh.faceCounts = {3};
    mesh.faceIndices = {0, 1, 2};
    QString const plain = textOf(builder);
    EXPECT_FALSE(plain.contains("primvars"));
    EXPECT_EQ(valueOf(plain, "wall_TrackMesh", "point3f[] points"),
              "{ 0: [(0, 0, 0), (1, 0, 0), (0, 1, 0)], 1: [(0, 0, 0), (1, 0, 0), (0, 2, 0)], }");
    EXPECT_EQ(valueOf(plain, "wall_TrackMesh", "float3[] extent"),
              "{ 0: [(0, 0, 0), (1, 1, 0)], 1: [(0, 0, 0), (1, 2, 0)], }");
    EXPECT_EQ(valueOf(plain, "wall_TrackMesh", "uniform token subdivisionScheme"), "\"none\"");
    mesh.uvs = {0, 0, 1, 0, 0, 0.5};
    mesh.faceIndices = {2, 0, 1};
    EXPECT_TRUE(textOf(builder).simplified().contains(
        "texCoord2f[] primvars:st = [(0, 0.5), (0, 0), (1, 0)] ( interpolation = \"faceVarying\" )"));
}

// Places are doubles; vertices of meshes are singles, which lie 0.0625 apart there.
TEST(Usd, FarFromTheOriginOnlyVerticesLoseDigits)
{
    SolveBuilder builder;
    builder.addLayer("far");
    auto& mesh = builder.layer().meshPoints.emplace();
    mesh.positions = {1000000.03, 0, -1000000.1};
    QString const text = textOf(builder);
    EXPECT_EQ(valueOf(text, "Vertex_1", "double3 xformOp:translate"), "(1000000.03, 0, -1000000.1)");
    EXPECT_EQ(valueOf(text, "far_TrackMesh", "point3f[] points"), "[(1000000, 0, -1000000.1)]");
}

}
