// Matchmove projects: what is left out and told, eyes, fields, names, models.

#include "Host/KORV_Exception.h"
#include "Host/Rig3D.h"
#include "Interchange/Kestrelia2DTrackersExporter.h"
#include "Interchange/KestreliaSolveExporter.h"
#include "SolveBuilder.h"
#include "kestrelia/ProjectFile.h"

#include <gtest/gtest.h>

#include <QMap>
#include <QVariant>

#include <any>
#include <cmath>

using namespace Export;

namespace
{

constexpr char TARGET[] = "%1/out.kst";

std::any features(bool included)
{
    return QMap<QString, QVariant>{{QStringLiteral("includeFeatures"), included}};
}

Korvane::ExportedFiles solved(ProjectBuilder const& builder, std::any const& customData = {},
                              std::vector<Anm::View> const& views = {Anm::View::defaultView()})
{
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.views = views;
    spec.customData = customData;
    auto const project = builder.make(MARLO_SOURCE_DIR "/tests/formats/project.json");
    return KestreliaSolveExporter().exportCameraSolve(*project, TARGET, spec, KV::CameraSolveExporter::AllObjects);
}

Korvane::ExportedFiles tracked(ProjectBuilder const& builder, ZN::LayerExportMode mode = ZN::AllLayers,
                               unsigned int layerId = 1)
{
    Korvane::TrackingExporter::Options options;
    options.layerExportMode = mode;
    auto const project = builder.make();
    return Kestrelia2DTrackersExporter().exportTracking(*project, TARGET, layerId, project->currentFrame(), options);
}

KestreliaLib::Scene sceneOf(Korvane::ExportedFiles const& result)
{
    EXPECT_EQ(result.files.keys(), QStringList(TARGET));
    return KestreliaLib::readProject(result.files.value(TARGET), "out.kst");
}

std::vector<std::string> groupsOf(KestreliaLib::Scene const& scene)
{
    std::vector<std::string> names;
    for (KestreliaLib::TrackerGroup const& group : scene.shots.at(0).groups)
    {
        names.push_back(group.name);
    }
    return names;
}

using Names = std::vector<std::string>;

QStringList told(char const* message)
{
    return {QStringLiteral("%1/out.kst: ") + QString::fromUtf8(message)};
}

constexpr char OLD_FEATURES[] =
    "Auto feature tracks will not be exported for this solve; please re-solve to get the required data.";

TEST(KestreliaSolve, FeaturesAreWrittenOnRequestButNotThoseOfAnOldSolve)
{
    SolveBuilder builder;
    builder.addPoints("Wall", {1, 2, 3});
    builder.addFeatures("first", {0, 0, 0}).addFeatures("none", {}).addFeatures("third", {1, 1, 1});
    EXPECT_EQ(groupsOf(sceneOf(solved(builder))), (Names{"Wall", "Marlo Features 1", "Marlo Features 3"}));
    EXPECT_EQ(groupsOf(sceneOf(solved(builder, features(false)))), Names{"Wall"});
    EXPECT_EQ(groupsOf(sceneOf(solved(builder, QMap<QString, QVariant>()))), Names{"Wall"});
    EXPECT_THROW(solved(builder, 1), std::bad_any_cast);

    builder.solve().legacy = true;
    auto const old = solved(builder);
    EXPECT_EQ(old.messages, told(OLD_FEATURES));
    EXPECT_EQ(groupsOf(sceneOf(old)), Names{"Wall"});
    EXPECT_EQ(solved(builder, features(false)).messages, QStringList());
}

TEST(KestreliaSolve, WithoutAProjectThereIsAMessageAndNoFile)
{
    ProjectBuilder untracked;
    untracked.addLayer("Wall").layer().tracks.clear();
    ProjectBuilder hidden;
    hidden.addLayer("Wall").layer().hidden = true;
    struct
    {
        Korvane::ExportedFiles result;
        char const* message;
    } const cases[] = {
        {solved(ProjectBuilder().addLayer("Wall")), "Empty Kestrelia project"},
        {solved(SolveBuilder(), {}, {}), "Could not initialise Kestrelia project"},
        {tracked(untracked), "Could not initialise Kestrelia project"},
        {tracked(hidden, ZN::VisibleLayers), "Could not initialise Kestrelia project"},
    };
    for (auto const& [result, message] : cases)
    {
        EXPECT_EQ(result.messages, told(message));
        EXPECT_TRUE(result.files.isEmpty());
    }
}

TEST(KestreliaSolve, ASetupNeedsFramesAndARate)
{
    auto const project = ProjectBuilder().make();
    KORV_Clip const& clip = *project->parameterManager()->getClip(1);
    auto const at = [](int frame) { return Anm::Context(Anm::Time::fromInt(frame), Anm::View::defaultView()); };
    struct
    {
        Anm::ContextRange range;
        double rate;
        double offset;
        bool isValid;
    } const cases[] = {
        {{at(0), at(1)}, 24.0, 1001.0, true}, {{at(1), at(0)}, 24.0, 0.0, false}, {{}, 24.0, 0.0, false},
        {{at(0), at(1)}, 0.0, 0.0, false},    {{at(0), at(1)}, NAN, 0.0, false},  {{at(0), at(1)}, 24.0, 1e9, false},
        {{at(0), at(1)}, 24.0, NAN, false},
    };
    for (auto const& [range, rate, offset, isValid] : cases)
    {
        Rig3D::KestreliaSetup setup(clip, range, {}, rate, offset);
        EXPECT_EQ(setup.isValid(), isValid) << rate << ' ' << offset;
        EXPECT_TRUE(setup.writeProject().isEmpty());
    }
}

TEST(KestreliaSolve, APoseHasTheAxesOfAThingAsItsRows)
{
    // A quarter turn about x, then one about z: x points along y, y along z, z along x.
    KestreliaLib::Pose const pose = Rig3D::toKestreliaPose({1, 2, 3}, {90, 0, 90}, {2, 3, 4});
    std::array<double, 9> const axes{0, 2, 0, 0, 0, 3, 4, 0, 0};
    for (std::size_t i = 0; i < axes.size(); ++i)
    {
        EXPECT_NEAR(pose.axes[i], axes[i], 1e-15) << i;
    }
    EXPECT_TRUE(pose.position == (KestreliaLib::Vector3{1, 2, 3}));
}

TEST(KestreliaSolve, AnEyeOfARigIsItsOwnCameraWithTheShiftOfItsPicture)
{
    SolveBuilder builder(2);
    builder.model.views = QStringList{"left", "right"};
    MarloHost::StereoModel rig;
    rig.separation = {4, {}, {}};
    rig.shift[0] = {7, {}, {}};
    rig.shift[1] = {0, {0, 1}, {-5, -6}};
    builder.solve().stereo = rig;
    Anm::View const left = Anm::View::defaultView();
    Anm::View const right(left.id() + 1);

    auto const one = sceneOf(solved(builder, {}, {left}));
    EXPECT_EQ(one.shots[0].camera->poses.at(0).position.x, -2.0);
    EXPECT_FALSE(one.shots[0].camera->lens.isMoving());
    EXPECT_EQ(one.shots[0].camera->lens.at(0).shift, 7.0);
    auto const other = sceneOf(solved(builder, {}, {right}));
    EXPECT_EQ(other.shots[0].camera->poses.at(0).position.x, 2.0);
    EXPECT_EQ(other.shots[0].camera->lens.at(1).shift, -6.0);

    auto const both = solved(builder, {}, {right, left});
    EXPECT_EQ(both.messages, told("The file holds the camera of one eye, that of the first view."));
    EXPECT_TRUE(sceneOf(both) == other);
}

TEST(KestreliaSolve, FieldsAreFramesAtTheRateOfFrames)
{
    SolveBuilder builder(6);
    builder.clip().interlaced = true;
    builder.clip().frameOffset = 20;
    builder.addLayer("Wall");
    for (auto const& result : {solved(builder), tracked(builder)})
    {
        KestreliaLib::Shot const shot = sceneOf(result).shots.at(0);
        EXPECT_TRUE(shot.isInterlaced);
        EXPECT_EQ(shot.frameRate, 24.0);
        EXPECT_EQ(shot.height, 540);
        EXPECT_EQ(shot.firstFrame, 20);
        EXPECT_EQ(shot.lastFrame, 25);
    }
}

TEST(KestreliaSolve, NamesThatAreEqualGetNumbersAndAreToldOnce)
{
    SolveBuilder builder;
    QString const odd = QStringLiteral("%1 \"odd\"\\ ; = 日本\n") + QString(10000, 'x');
    builder.addPoints(odd, {0, 0, 0, 1, 1, 1}).addPoints("Wall", {1, 1, 1});
    auto const result = solved(builder);
    auto const scene = sceneOf(result);
    EXPECT_EQ(groupsOf(scene), (Names{odd.toStdString(), "Wall"}));
    EXPECT_EQ(scene.shots[0].trackers[0].name, "Point 1");
    EXPECT_EQ(scene.shots[0].trackers[1].name, "Point 2");
    EXPECT_EQ(scene.shots[0].trackers[2].name, "Point 1_0001");
    EXPECT_EQ(result.messages, told("Several things have one name: Point 1. All but the first got numbers."));

    ProjectBuilder layers;
    layers.addLayer("Wall").addLayer("Wall").addLayer("Wall");
    auto const flat = tracked(layers);
    EXPECT_EQ(groupsOf(sceneOf(flat)), (Names{"Wall", "Wall_0001", "Wall_0002"}));
    EXPECT_EQ(flat.messages, QStringList());
    ASSERT_EQ(flat.notices.size(), 1U);
    EXPECT_EQ(flat.notices[0].text, QString("Several things have one name: Wall, Wall lower left, Wall lower right, "
                                            "Wall upper left, Wall upper right. All but the first got numbers."));
}

TEST(KestreliaSolve, AModelStandsOnItsLayerAndOneWithoutFileIsTold)
{
    SolveBuilder builder;
    builder.addPoints("Wall", {0, 0, 0});
    builder.layer().pose.positions = {0, 0, 5};
    MarloHost::FileAssetModel lamp{"models/lamp.v2.obj", "Wall"};
    lamp.pose.positions = {1, 0, 0};
    builder.solve().assets = {lamp, {"models/none.obj", ""}};
    auto const result = solved(builder);
    EXPECT_EQ(result.messages, told("A model isn't exported: models/none.obj: there is no such file"));
    auto const scene = sceneOf(result);
    ASSERT_EQ(scene.objects.size(), 1U);
    EXPECT_EQ(scene.objects[0].poses.at(0).position.z, 5.0);
    ASSERT_EQ(scene.meshes.size(), 2U);
    EXPECT_EQ(scene.meshes[0].object, 1U);
    EXPECT_EQ(scene.meshes[0].pose.position.x, 1.0);
    EXPECT_EQ(scene.shots[0].trackers[0].object, 1U);
}

// What lies between two keys isn't finite either where one of them isn't, nor does the key before.
TEST(KestreliaSolve, WhatIsNotFiniteIsLeftOutAndCounted)
{
    SolveBuilder builder(3);
    builder.addMovingChain();
    builder.layer().pose = {{0, 1, 2}, {0, 0, 0, NAN, 0, 0, 0, 0, 0}, {}, {}};
    builder.layer().surfacePoints->frames = {0, 1, 2};
    builder.layer().surfacePoints->positions = {0, 0, 0, 0, 0, 0, INFINITY, 0, 0};
    auto const result = solved(builder);
    EXPECT_EQ(result.failedCount, 4);
    auto const scene = sceneOf(result);
    EXPECT_EQ(scene.objects[0].poses.frames, std::vector<int>{2});
    EXPECT_EQ(scene.shots[0].trackers[0].positions.frames, std::vector<int>{0});
}

TEST(Kestrelia2D, LayersAreThoseOfTheChoiceThatHaveARange)
{
    ProjectBuilder builder(10);
    builder.addLayer("first").range(2, 4); // tracked beyond its range
    builder.layer().selected = true;
    builder.addLayer("untracked").layer().tracks.clear();
    builder.addLayer("hidden").layer().hidden = true;
    builder.addLayer("gaps").layer().tracks[0] = {"", {3, 7}, {1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 8, 0, 1, 0, 0, 0, 1}};
    struct
    {
        ZN::LayerExportMode mode;
        Names groups;
        int first;
        int last;
    } const cases[] = {
        {ZN::SelectedLayer, {"first"}, 2, 4},
        {ZN::VisibleLayers, {"first", "gaps"}, 2, 7},
        {ZN::AllLayers, {"first", "hidden", "gaps"}, 0, 9},
        {ZN::SpecifiedLayer, {"gaps"}, 3, 7},
    };
    for (auto const& [mode, groups, first, last] : cases)
    {
        SCOPED_TRACE(mode);
        auto const result = tracked(builder, mode, 4);
        auto const scene = sceneOf(result);
        EXPECT_EQ(groupsOf(scene), groups);
        EXPECT_EQ(scene.shots[0].firstFrame, first);
        EXPECT_EQ(scene.shots[0].lastFrame, last);
        EXPECT_EQ(result.messages,
                  groups.size() == 1 ? QStringList() : told("Layer \"untracked\" has no tracking data"));
        if (groups.front() == "first")
        {
            EXPECT_EQ(scene.shots[0].trackers[0].image.frames, (std::vector<int>{2, 3, 4}));
        }
        if (groups.back() == "gaps")
        {
            KestreliaLib::Tracker const& corner = scene.shots[0].trackers[4 * groups.size() - 3];
            EXPECT_EQ(corner.name, "gaps lower right");
            EXPECT_EQ(corner.image.frames, (std::vector<int>{3, 7}));
            EXPECT_EQ(corner.image.values[1].x, 1068.0);
        }
    }
    builder.model.layers[0].selected = false;
    EXPECT_EQ(groupsOf(sceneOf(tracked(builder, ZN::SelectedLayer, 4))), Names{"gaps"});
}

TEST(Kestrelia2D, APictureOfAnotherSizeIsToldAndAnotherViewIsTheCurrentOne)
{
    ProjectBuilder builder;
    builder.model.clips.push_back(builder.clip());
    builder.model.clips.push_back(builder.clip());
    builder.model.clips[1].name = "clean";
    builder.model.clips[2].name = "half";
    builder.model.clips[2].width = 960;
    builder.addLayer("plate").addLayer("clean").addLayer("half");
    builder.model.layers[1].clip = "clean";
    builder.model.layers[2].clip = "half";
    auto const result = tracked(builder);
    EXPECT_EQ(groupsOf(sceneOf(result)), (Names{"plate", "clean"}));
    EXPECT_EQ(result.messages, told("Layer \"half\" was tracked on a picture of another size and isn't exported"));

    ProjectBuilder stereo;
    stereo.model.views = QStringList{"left", "right"};
    stereo.model.currentView = "right";
    stereo.addLayer("Wall").track([](int) { return ProjectBuilder::translation(100, 0); }, "right");
    EXPECT_EQ(sceneOf(tracked(stereo)).shots[0].trackers[0].image.at(0).x, 960.0);
}

}
