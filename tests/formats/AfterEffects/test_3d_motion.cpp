// Camera solves as 3D motion text: features on request, eyes of a rig, and what the user is told.

#include "AfterEffects/AE3DMotionExporter.h"
#include "Host/KORV_Exception.h"
#include "OtherProgram.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <QMap>
#include <QVariant>

#include <any>

using namespace Export;

namespace
{

// A picture of 200 x 100 pixels whose focal length is as long as its film back is wide, so
// that a scene unit is 200 pixels; the camera has its first sample at (1, 2, 3), turned.
ProjectBuilder scene()
{
    ProjectBuilder builder(2, 200, 100);
    MarloHost::SolveModel solve;
    solve.camera.pose.frames = {0, 1};
    solve.camera.pose.positions = {1, 2, 3, 1.5, 2, 3};
    solve.camera.pose.rotations = {0, 30, 0, 0, 45, 0};
    solve.camera.focalLength.value = 36;
    builder.model.solve = solve;
    return builder;
}

MarloHost::PointCloudModel pointAt(double x, QString const& name)
{
    MarloHost::PointCloudModel cloud;
    cloud.positions = {x, 0, 0};
    cloud.names = QStringList{name};
    return cloud;
}

MarloHost::PoseModel restingAt(double x)
{
    MarloHost::PoseModel pose;
    pose.positions = {x, 0, 0};
    return pose;
}

Korvane::ExportedFiles run(AE3DMotionExporter const& exporter, KORV_ProjectManager& project,
                           std::any const& customData = {},
                           std::vector<Anm::View> const& views = {Anm::View::defaultView()})
{
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.views = views;
    spec.customData = customData;
    return exporter.exportCameraSolve(project, "out.txt", spec, KV::CameraSolveExporter::AllObjects);
}

QString textOf(ProjectBuilder const& builder, AE3DMotionExporter const& exporter = AE3DMotionExporter(2.0F),
               std::any const& customData = {})
{
    return QString::fromUtf8(run(exporter, *builder.make(), customData).files.value("out.txt"));
}

QStringList documentsOf(QString const& text)
{
    return text.split("Adobe After Effects 6.0 Keyframe Data\n").mid(1);
}

// The rows of a block, without its column titles.
QStringList rows(QString const& document, QString const& title)
{
    int const at = document.indexOf("\n" + title + "\n");
    if (at < 0)
    {
        return {};
    }
    QString const block = document.mid(at + title.size() + 2);
    return block.left(block.indexOf("\n\n")).split('\n').mid(1);
}

TEST(Motion3D, IsRefusedWhereTheHeaderWouldNotBeFinite)
{
    ProjectBuilder builder = scene();
    for (double const millimetres : {std::nan(""), 1e300})
    {
        builder.model.solve->camera.focalLength = {millimetres, {}, {}};
        EXPECT_THROW(textOf(builder), KORV_OperationFailed);
    }
}

TEST(Motion3D, FeaturesAreLeftOutOnRequest)
{
    ProjectBuilder builder = scene();
    builder.model.solve->features.push_back({"set", QString(), false, false, pointAt(1, "Feature")});
    QString const key = KV::CameraSolveExporter::UI().includeFeatures.key;
    using Map = QMap<QString, QVariant>;
    AE3DMotionExporter const exporter(2.0F);
    for (auto const& [customData, included] :
         {std::pair(std::any(), true), std::pair(std::any(Map{{key, true}}), true),
          std::pair(std::any(Map{{key, false}}), false), std::pair(std::any(Map()), false)})
    {
        EXPECT_EQ(textOf(builder, exporter, customData).contains("*NullObject: Feature"), included);
    }
    EXPECT_THROW(textOf(builder, exporter, 17), std::bad_any_cast);

    builder.model.solve->legacy = true;
    EXPECT_FALSE(textOf(builder).contains("Feature"));
}

TEST(Motion3D, AStereoPairIsExportedOneEyeAtATimeInCentimetres)
{
    ProjectBuilder builder = scene();
    builder.model.views = QStringList{"left", "right"};
    builder.model.solve->stereo = MarloHost::StereoModel();
    AE3DMotionExporter const exporter(2.0F);
    QString const camera = documentsOf(textOf(builder, exporter)).value(0);
    EXPECT_EQ(rows(camera, "Transform\tPosition"),
              (QStringList{"\t0\t20000\t-40000\t-60000", "\t1\t30000\t-40000\t-60000"}));
    QString const mono = documentsOf(textOf(scene(), exporter)).value(0);
    EXPECT_EQ(rows(mono, "Transform\tPosition"), (QStringList{"\t0\t200\t-400\t-600", "\t1\t300\t-400\t-600"}))
        << "by the same exporter";

    auto const refused = [&](ProjectBuilder const& source, std::vector<Anm::View> const& views)
    {
        try
        {
            run(exporter, *source.make(), {}, views);
        }
        catch (KORV_OperationFailed const& failure)
        {
            return QString::fromUtf8(failure.what());
        }
        return QString();
    };
    Anm::View const left(0);
    Anm::View const right(1);
    QString const noSolution = "No 3D solution ready, please solve the scene first";
    EXPECT_EQ(refused(builder, {left, right}), noSolution);
    EXPECT_EQ(refused(builder, {}), noSolution);
    EXPECT_EQ(refused(ProjectBuilder(), {left}), noSolution);
    EXPECT_EQ(refused(builder, {right}), QString());
}

TEST(Motion3D, TellsWhatTheUserMustKnow)
{
    ProjectBuilder builder = scene();
    builder.addLayer("Wall");
    builder.layer().surfacePoints = pointAt(1, "Spot");
    builder.layer().surfacePoints->inaccurate = {0};
    Korvane::ExportedFiles const result = run(AE3DMotionExporter(2.0F), *builder.make());
    ASSERT_EQ(result.messages.size(), 1);
    EXPECT_TRUE(result.messages[0].startsWith("out.txt: ") && result.messages[0].contains("Spot"));
    EXPECT_EQ(result.failedCount, 0);
    ASSERT_EQ(result.notices.size(), 1U);
    EXPECT_EQ(result.notices[0].settingsKey, "DontShowAE3DTrackImportInfoMsg");
    EXPECT_TRUE(result.notices[0].text.startsWith("Loading 3D Motion data in After Effects requires the "));

    // Inside of Adobe's programs the importer is there.
    for (bool const adobe : {false, true})
    {
        auto const project = builder.make(QString(), insideOf(adobe));
        EXPECT_EQ(run(AE3DMotionExporter(2.0F), *project).notices.size(), adobe ? 0U : 1U);
    }
}

// What hangs on a null is tied to it by its name; the program can't tell two of one name apart.
TEST(Motion3D, WarnsOfNamesThatClash)
{
    struct Case
    {
        char const* what;
        QStringList layers;
        QString group;
        QString point;
        int freeSets;

        /// What the warning lists; empty for none.
        QString clash;
    };
    Case const cases[] = {
        {"different names", {"Wall", "Door"}, "Group", "Spot", 0, ""},
        {"two layers", {"My wall", "My wall"}, "", "Spot", 0, "My_wall"},
        {"names that differ by a blank", {"My wall", "My_wall"}, "", "Spot", 0, "My_wall"},
        {"a layer and a group", {"Wall", "Door"}, "Door", "Spot", 0, "Door, Wall"},
        {"a layer and the root of features", {"Static auto features"}, "", "Spot", 1, "Static_auto_features"},
        {"a layer and its point", {"Wall"}, "", "Wall", 0, "Wall"},
        {"the root stands twice", {"Wall"}, "", "Spot", 2, ""}};
    for (Case const& c : cases)
    {
        SCOPED_TRACE(c.what);
        ProjectBuilder builder = scene();
        for (QString const& group : c.group.isEmpty() ? QStringList() : QStringList{c.group, "Wall"})
        {
            MarloHost::GroupModel model;
            model.name = group;
            model.moving = true;
            builder.model.groups.push_back(model);
        }
        for (QString const& name : c.layers)
        {
            builder.addLayer(name);
            builder.layer().surfacePoints = pointAt(1, c.point);
            builder.layer().moving = true;
            builder.layer().group = c.group == "Door" ? (name == "Wall" ? "Door" : "Wall") : c.group;
        }
        for (int i = 0; i < c.freeSets; ++i)
        {
            builder.model.solve->features.push_back({QString::number(i), QString(), false, false, pointAt(2, "F")});
        }
        auto const project = builder.make();
        EXPECT_TRUE(run(AE3DMotionExporter(1.0F), *project).messages.isEmpty());
        QStringList const messages = run(AE3DMotionExporter(2.0F), *project).messages;
        EXPECT_EQ(messages.size(), c.clash.isEmpty() ? 0 : 1);
        EXPECT_EQ(messages.filter("one name: " + c.clash + ". What").size(), messages.size());
    }
}

TEST(Motion3D, WarnsOfModelsThatLoseTheirLayer)
{
    for (double const place : {0.0, 3.0})
    {
        ProjectBuilder builder = scene();
        builder.addLayer("Wall");
        builder.layer().pose = restingAt(place);
        builder.model.solve->assets = {{"/m/table.obj", "Wall", restingAt(1)}, {"/m/lamp.obj", "", restingAt(1)}};
        auto const project = builder.make();
        EXPECT_TRUE(run(AE3DMotionExporter(2.0F), *project).messages.isEmpty());
        QStringList const messages = run(AE3DMotionExporter(1.0F), *project).messages;
        EXPECT_EQ(messages.size(), place == 0 ? 0 : 1);
        EXPECT_EQ(messages.filter("no hierarchy: table").size(), messages.size());
    }
}

// Positions are times 200 and the focal length has 200 pixels: the camera's x of 1000006 is
// printed as 1000010, at a depth of 2000 that is 0.4 px.
TEST(Motion3D, TellsWhatItsDigitsCost)
{
    struct Case
    {
        double x;
        double layer;
        double depth;
        QString pixels;
    };
    for (Case const& c :
         {Case{5000.03, 0, 10, "0.40"}, Case{5000.03, 5000, 10, "0.40"}, Case{5000, 5000.03, 10, "0.40"},
          Case{5000.03, 0, 50, ""}, Case{5000.03, 0, -10, ""}, Case{5000.03, 0, 1, ""}, Case{0.03, 0, 10, ""}})
    {
        ProjectBuilder builder = scene();
        builder.model.solve->camera.pose = restingAt(c.x);
        builder.addLayer("Wall");
        builder.layer().pose = restingAt(c.layer);
        builder.layer().surfacePoints = pointAt(0, "Spot");
        builder.layer().surfacePoints->positions = {c.x + 0.52 - c.layer, 0, -c.depth};
        auto const project = builder.make();
        for (float const version : {1.0F, 2.0F})
        {
            QStringList const messages = run(AE3DMotionExporter(version), *project).messages;
            EXPECT_EQ(messages.size(), c.pixels.isEmpty() ? 0 : 1) << messages.join("").toStdString();
            EXPECT_EQ(messages.filter("points up to " + c.pixels).size(), messages.size());
        }
    }
}

}
