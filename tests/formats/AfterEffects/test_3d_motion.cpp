// Camera solves as 3D motion text: the layout, and that every null has its document.

#include "AfterEffects/AE3DMotionExporter.h"
#include "Host/KORV_Exception.h"
#include "Host/PluginHost.h"
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

Korvane::ExportedFiles run(KORV_ProjectManager& project, float version, std::any const& customData = {},
                           std::vector<Anm::View> const& views = {Anm::View::defaultView()})
{
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.views = views;
    spec.customData = customData;
    return AE3DMotionExporter(version).exportCameraSolve(project, "out.txt", spec, KV::CameraSolveExporter::AllObjects);
}

QString textOf(ProjectBuilder const& builder, float version = 2.0F, std::any const& customData = {})
{
    auto const project = builder.make();
    return QString::fromUtf8(run(*project, version, customData).files.value("out.txt"));
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

TEST(Motion3D, TextOfACameraALayerAndAPoint)
{
    ProjectBuilder builder = scene();
    builder.addLayer("My wall");
    builder.layer().surfacePoints = pointAt(-0.5, "Spot 1");
    builder.layer().surfacePoints->positions = {-0.5, 0.25, -1};

    QString const header = "Adobe After Effects 6.0 Keyframe Data\n"
                           "\n"
                           "\tUnits Per Second\t24\n"
                           "\tSource Width\t200\n"
                           "\tSource Height\t100\n"
                           "\tSource Pixel Aspect Ratio\t1\n"
                           "\tComp Pixel Aspect Ratio\t1\n"
                           "\n";
    QString const turns = "\n"
                          "Transform\tX Rotation\n"
                          "\tFrame\tdegrees\n"
                          "\t0\t0\n"
                          "\n"
                          "Transform\tY Rotation\n"
                          "\tFrame\tdegrees\n"
                          "\t0\t0\n"
                          "\n"
                          "Transform\tRotation\n"
                          "\tFrame\tdegrees\n"
                          "\t0\t0\n"
                          "\n"
                          "Transform\tScale\n"
                          "\tFrame\tX percent\tY percent\tZ percent\n"
                          "\t0\t100\t100\t100\n";
    QString const position = "\nTransform\tPosition\n\tFrame\tX pixels\tY pixels\tZ pixels\n";
    QString const footer = "\nEnd of Keyframe Data\n";

    EXPECT_EQ(textOf(builder), "*Marlo 3D Track Importer 2.0 Data\n"
                               "*FilmSize: 102.049\n"
                               "*FocalLength: 102.049\n"
                               "*NumberOfNulls: 2\n"
                               "*NullParent: My_wall\n"
                               "*NullObject: Spot 1 Parent: My_wall\n"
                               "*EndHeader\n" +
                                   header + position +
                                   "\t0\t200\t-400\t-600\n"
                                   "\t1\t300\t-400\t-600\n"
                                   "\n"
                                   "Transform\tX Rotation\n"
                                   "\tFrame\tdegrees\n"
                                   "\t0\t0\n"
                                   "\t1\t0\n"
                                   "\n"
                                   "Transform\tY Rotation\n"
                                   "\tFrame\tdegrees\n"
                                   "\t0\t-30\n"
                                   "\t1\t-45\n"
                                   "\n"
                                   "Transform\tRotation\n"
                                   "\tFrame\tdegrees\n"
                                   "\t0\t0\n"
                                   "\t1\t0\n" +
                                   footer + header + position + "\t0\t0\t0\t0\n" + turns + footer + header + position +
                                   "\t0\t-100\t-50\t200\n" + turns + footer);
}

// Nothing but the order ties a document to its name. Each thing has a place of its own, by
// which its document is told, in every combination of things there may be.
TEST(Motion3D, NamesAndDocumentsPairUp)
{
    enum Thing
    {
        Group = 1,
        Moving = 2,
        Points = 4,
        ParentedFeatures = 8,
        FreeFeatures = 16,
        ParentedAsset = 32,
        FreeAsset = 64,
        SecondFreeSet = 128
    };
    for (int things = 0; things < 256; ++things)
    {
        ProjectBuilder builder = scene();
        builder.addLayer("La yer");
        bool const isMoving = things & Moving;
        bool const isCarried = (things & Group) && isMoving;
        MarloHost::LayerModel& layer = builder.layer();
        layer.moving = isMoving;
        layer.pose = restingAt(2);
        if (things & Group)
        {
            MarloHost::GroupModel group;
            group.name = "Gr oup";
            group.moving = true;
            group.pose = restingAt(1);
            builder.model.groups.push_back(group);
            layer.group = group.name;
        }
        if (things & Points)
        {
            layer.surfacePoints = pointAt(4, "Po int");
        }
        MarloHost::SolveModel& solve = *builder.model.solve;
        solve.featureRoot = restingAt(8);
        if (things & ParentedFeatures)
        {
            solve.features.push_back({"carried", layer.name, false, false, pointAt(16, "Carried")});
        }
        if (things & FreeFeatures)
        {
            solve.features.push_back({"free", QString(), false, false, pointAt(32, "Free")});
        }
        if (things & SecondFreeSet)
        {
            solve.features.push_back({"also free", QString(), false, false, pointAt(256, "Also free")});
        }
        if (things & ParentedAsset)
        {
            solve.assets.push_back({"/models/table.v2.obj", layer.name, restingAt(64)});
        }
        if (things & FreeAsset)
        {
            solve.assets.push_back({"/models/lamp.obj", QString(), restingAt(128)});
        }
        double const world = 2 + (isCarried ? 1 : 0);
        QMap<QString, double> const local{{"Gr_oup", 1},     {"La_yer", 2}, {"Po int", 4}, {"Static_auto_features", 8},
                                          {"Carried", 16},   {"Free", 32},  {"table", 64}, {"lamp", 128},
                                          {"Also free", 256}};
        QMap<QString, double> const absolute{{"Po int", world + 4}, {"Carried", world + 16}, {"Free", 8 + 32},
                                             {"table", 64},         {"lamp", 128},           {"Also free", 8 + 256}};
        QMap<QString, QString> const parents{{"Gr_oup", ""},
                                             {"La_yer", isCarried ? "Gr_oup" : ""},
                                             {"Po int", "La_yer"},
                                             {"Static_auto_features", ""},
                                             {"Carried", "La_yer"},
                                             {"Free", "Static_auto_features"},
                                             {"Also free", "Static_auto_features"},
                                             {"table", "La_yer"},
                                             {"lamp", ""}};
        int const expectedPoints = bool(things & Points) + bool(things & ParentedFeatures) +
                                   bool(things & FreeFeatures) + bool(things & SecondFreeSet) +
                                   bool(things & ParentedAsset) + bool(things & FreeAsset);
        for (float const version : {1.0F, 2.0F})
        {
            SCOPED_TRACE(testing::Message() << "things " << things << ", version " << version);
            bool const hierarchy = version == 2.0F;
            QString const text = textOf(builder, version);
            QStringList const documents = documentsOf(text);
            QStringList const names = text.left(text.indexOf("*EndHeader")).split('\n', Qt::SkipEmptyParts).mid(4);
            ASSERT_EQ(documents.size(), names.size() + 1);
            ASSERT_TRUE(text.contains("*NumberOfNulls: " + QString::number(names.size()) + "\n"));
            EXPECT_EQ(names.filter("*NullObject: ").size(), expectedPoints);
            QStringList listed;
            for (int i = 0; i < names.size(); ++i)
            {
                QStringList const parts = names[i].section(": ", 1).split(" Parent: ");
                QString const name = parts[0];
                EXPECT_EQ(parts.value(1), hierarchy ? parents[name] : QString()) << name.toStdString();
                EXPECT_TRUE(parts.size() == 1 || listed.contains(parts[1])) << "its parent comes later";
                double const x = (hierarchy ? local : absolute).value(name, -1);
                EXPECT_EQ(rows(documents[i + 1], "Transform\tPosition"),
                          QStringList{"\t0\t" + QString::number(x * 200) + "\t0\t0"})
                    << name.toStdString();
                listed.append(name);
            }
        }
    }
}

TEST(Motion3D, FramesCountFromPlaybackAndHeadersFromTheWholeFrame)
{
    ProjectBuilder builder = scene();
    builder.clip().interlaced = true;
    builder.clip().pixelAspect = 2;
    builder.clip().frameOffset = 1001;
    builder.model.playbackIn = 1;
    builder.model.solve->camera.focalLength = {36, {0, 1}, {36, 72}};
    QString const text = textOf(builder);
    QString const camera = documentsOf(text).value(0);

    EXPECT_TRUE(camera.contains("\tSource Width\t400\n\tSource Height\t100\n\tSource Pixel Aspect Ratio\t2\n"));
    EXPECT_EQ(rows(camera, "Transform\tY Rotation"), (QStringList{"\t-0.5\t-30", "\t0\t-45"}));
    EXPECT_EQ(rows(camera, "Camera Options\tZoom"), (QStringList{"\t-0.5\t102.049", "\t0\t204.098"}));
    EXPECT_TRUE(text.contains("*FocalLength: 102.049\n"));
}

TEST(Motion3D, FeaturesAreLeftOutOnRequest)
{
    ProjectBuilder builder = scene();
    builder.model.solve->features.push_back({"set", QString(), false, false, pointAt(1, "Feature")});
    auto const project = builder.make();
    QString const key = KV::CameraSolveExporter::UI().includeFeatures.key;
    using Map = QMap<QString, QVariant>;
    struct Case
    {
        std::any customData;
        bool included;
    };
    for (Case const& testCase :
         {Case{{}, true}, Case{Map{{key, true}}, true}, Case{Map{{key, false}}, false}, Case{Map(), false}})
    {
        EXPECT_EQ(textOf(builder, 2.0F, testCase.customData).contains("*NullObject: Feature"), testCase.included);
    }
    EXPECT_THROW(run(*project, 2.0F, 17), std::bad_any_cast);

    builder.model.solve->legacy = true;
    EXPECT_FALSE(textOf(builder).contains("Feature"));
}

TEST(Motion3D, AStereoPairIsExportedOneEyeAtATime)
{
    ProjectBuilder builder = scene();
    builder.model.views = QStringList{"left", "right"};
    builder.model.solve->stereo = MarloHost::StereoModel();
    auto const project = builder.make();
    Anm::View const left(0);
    Anm::View const right(1);
    QString const camera = documentsOf(textOf(builder)).value(0);
    EXPECT_EQ(rows(camera, "Transform\tPosition"),
              (QStringList{"\t0\t20000\t-40000\t-60000", "\t1\t30000\t-40000\t-60000"}));

    auto const refused = [&](KORV_ProjectManager& source, std::vector<Anm::View> const& views)
    {
        try
        {
            run(source, 2.0F, {}, views);
        }
        catch (KORV_OperationFailed const& failure)
        {
            return QString::fromUtf8(failure.what());
        }
        return QString();
    };
    QString const noSolution = "No 3D solution ready, please solve the scene first";
    EXPECT_EQ(refused(*project, {left, right}), noSolution);
    EXPECT_EQ(refused(*project, {}), noSolution);
    EXPECT_EQ(refused(*ProjectBuilder().make(), {left}), noSolution);
    EXPECT_EQ(refused(*project, {right}), QString());
}

TEST(Motion3D, TellsWhatTheUserMustKnow)
{
    ProjectBuilder builder = scene();
    builder.addLayer("Wall");
    builder.layer().surfacePoints = pointAt(1, "Spot");
    builder.layer().surfacePoints->inaccurate = {0};
    auto const project = builder.make();
    Korvane::ExportedFiles const result = run(*project, 2.0F);
    ASSERT_EQ(result.messages.size(), 1);
    EXPECT_TRUE(result.messages[0].startsWith("out.txt: ") && result.messages[0].contains("Spot"));
    EXPECT_EQ(result.failedCount, 0);
    ASSERT_EQ(result.notices.size(), 1U);
    EXPECT_EQ(result.notices[0].settingsKey, "DontShowAE3DTrackImportInfoMsg");
    EXPECT_TRUE(result.notices[0].text.startsWith("Loading 3D Motion data in After Effects requires the "));
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
        EXPECT_TRUE(run(*project, 1.0F).messages.isEmpty());
        QStringList const messages = run(*project, 2.0F).messages;
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
        EXPECT_TRUE(run(*project, 2.0F).messages.isEmpty());
        QStringList const messages = run(*project, 1.0F).messages;
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
            QStringList const messages = run(*project, version).messages;
            EXPECT_EQ(messages.size(), c.pixels.isEmpty() ? 0 : 1) << messages.join("").toStdString();
            EXPECT_EQ(messages.filter("points up to " + c.pixels).size(), messages.size());
        }
    }
}

}
