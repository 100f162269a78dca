// Camera solves as Alembic archives, read back by the library itself: what golden and reader
// don't reach.

#include "AlembicReading.h"
#include "Host/KORV_Exception.h"
#include "Interchange/AlembicCameraSolveExporter.h"
#include "Projection.h"
#include "SolveBuilder.h"

#include <gtest/gtest.h>

#include <QMap>
#include <QVariant>

using namespace Export;

namespace
{

using Options = QMap<QString, QVariant>;

SolveBuilder shot()
{
    SolveBuilder builder(3);
    builder.turnCamera().poseScene().addMovingChain();
    builder.clip().frameOffset = 1001;
    return builder;
}

Korvane::ExportedFiles run(ProjectBuilder const& builder, Options const& options = {{"includeFeatures", true}},
                           std::vector<Anm::View> const& views = {Anm::View::defaultView()})
{
    KV::ExportSpec spec;
    spec.layers = KV::Layers::FilterByPoints();
    spec.views = views;
    spec.customData = options;
    return AlembicCameraSolveExporter().exportCameraSolve(*builder.make(), "out.abc", spec,
                                                          KV::CameraSolveExporter::AllObjects);
}

OpenArchive archiveOf(ProjectBuilder const& builder, Options const& options = {{"includeFeatures", true}})
{
    return OpenArchive(run(builder, options).files.value("out.abc"));
}

/// What a path of transforms does in a frame: the last sample that there is by then.
Imath::M44d worldOf(OpenArchive const& archive, std::string const& path, int frame)
{
    Imath::M44d world;
    std::string parent;
    std::istringstream names(path);
    for (std::string name; std::getline(names, name, '/');)
    {
        parent += (parent.empty() ? "" : "/") + name;
        int const samples = static_cast<int>(archive.transform(parent).getNumSamples());
        world = samples == 0 ? world : archive.matrix(parent, std::min(frame, samples - 1)) * world;
    }
    return world;
}

Abc::ICameraSchema cameraOf(OpenArchive const& archive)
{
    return Abc::ICamera(archive.object("scene/Shot 1/Data"), Abc::kWrapExisting).getSchema();
}

/// Expects that what the file says of a point, seen through the camera of the file, is the
/// pixel at which the project's camera sees it.
void expectSeenAlike(ProjectBuilder const& builder, OpenArchive const& archive, std::string const& name, int frame,
                     Eigen::Vector3d const& inScene)
{
    Imath::M44d const point = worldOf(archive, "scene/Shot 1/Trackers/" + name, frame);
    Imath::M44d const camera = worldOf(archive, "scene/Shot 1", frame);
    Imath::V3d const seen = Imath::V3d(0.0) * (point * camera.inverse());
    Abc::CameraSample const lens = cameraOf(archive).getValue(Abc::ISampleSelector(Abc::index_t(frame)));
    MarloHost::ClipModel const& clip = builder.model.clips.front();
    double const film = 10 * lens.getHorizontalAperture();
    double const filmHeight = 10 * lens.getVerticalAperture();
    double const x = clip.width * (0.5 + lens.getFocalLength() * seen.x / -seen.z / film);
    double const y = clip.height * (0.5 + lens.getFocalLength() * seen.y / -seen.z / filmHeight);
    Eigen::Vector2d const expected = Projection::project(builder.model, inScene, frame);
    EXPECT_NEAR(x, expected.x(), 1e-6) << name << " in " << frame;
    EXPECT_NEAR(y, expected.y(), 1e-6) << name << " in " << frame;
}

TEST(AlembicSolve, PointsAreSeenWhereTheProjectSeesThem)
{
    for (double const pixelAspect : {1.0, 2.0})
    {
        for (Options const& options : {Options{{"includeFeatures", true}}, Options{{"pointSizeMode", "suggested"}}})
        {
            SolveBuilder builder = shot();
            builder.clip().pixelAspect = pixelAspect;
            builder.addPoints("wall", {1, 2, -3});
            builder.layer().surfacePoints->names = QStringList{"still"};
            OpenArchive const archive = archiveOf(builder, options);
            for (int frame = 0; frame < 3; ++frame)
            {
                expectSeenAlike(builder, archive, "still", frame, {1, 2, -3});
            }
            EXPECT_EQ(archive.transform("scene/Shot 1/Trackers/still").getNumSamples(), 1U);
        }
    }
}

TEST(AlembicSolve, TimeStartsAtTheShownFrameAndFieldsComeTwiceAsOften)
{
    SolveBuilder builder = shot();
    EXPECT_DOUBLE_EQ(cameraOf(archiveOf(builder)).getTimeSampling()->getSampleTime(2), 1003.0 / 24);
    EXPECT_EQ(cameraOf(archiveOf(builder)).getNumSamples(), 3U);
    builder.clip().interlaced = true;
    EXPECT_DOUBLE_EQ(cameraOf(archiveOf(builder)).getTimeSampling()->getSampleTime(2), 1003.0 / 48);
}

TEST(AlembicSolve, TheScreenFillsThePictureBeforeTheFarPlane)
{
    SolveBuilder builder = shot();
    builder.clip().pixelAspect = 2;
    OpenArchive const archive = archiveOf(builder);
    for (int frame = 0; frame < 3; ++frame)
    {
        Abc::CameraSample const lens = cameraOf(archive).getValue(Abc::ISampleSelector(Abc::index_t(frame)));
        Imath::M44d const screen = archive.matrix("scene/Shot 1/Screen", frame);
        Imath::V3d const corner = Imath::V3d(1.0, 1.0, 0.0) * screen;
        EXPECT_NEAR(corner.z, -995.0, 1e-9);
        EXPECT_NEAR(corner.x / -corner.z, 10 * lens.getHorizontalAperture() / (2 * lens.getFocalLength()), 1e-12);
        EXPECT_NEAR(corner.y / -corner.z, 10 * lens.getVerticalAperture() / (2 * lens.getFocalLength()), 1e-12);
        EXPECT_GT(lens.getFarClippingPlane(), 995.0);
    }
}

TEST(AlembicSolve, ObjectsAreThereWhenTheOptionsAndTheSolveSaySo)
{
    SolveBuilder builder = shot();
    EXPECT_EQ(archiveOf(builder).names(), std::vector<std::string>{"scene"});
    EXPECT_EQ(archiveOf(builder, {{"sceneAtOrigin", true}}).names(), std::vector<std::string>{"Shot 1"});
    EXPECT_EQ(archiveOf(builder).names("scene/Shot 1"),
              (std::vector<std::string>{"Data", "ShotPreLens", "Screen", "Trackers"}));

    builder.addFeatures("set", {0, 0, 0, 1, 1, 1});
    EXPECT_EQ(archiveOf(builder).names("scene/Shot 1/Trackers").size(), 3U);
    EXPECT_EQ(archiveOf(builder, {{"includeFeatures", false}}).names("scene/Shot 1/Trackers").size(), 1U);

    builder.model.solve.reset();
    auto const withoutCamera = run(builder);
    EXPECT_EQ(OpenArchive(withoutCamera.files.value("out.abc")).names("scene/Shot 1"),
              std::vector<std::string>{"Trackers"});
}

TEST(AlembicSolve, ViewsChooseNoOtherCameraAndThatIsTold)
{
    SolveBuilder builder = shot();
    builder.model.views = QStringList{"left", "right"};
    Anm::View const left(0);
    Anm::View const right(1);
    EXPECT_EQ(run(builder, {}, {left, right}).messages, QStringList())
        << "a solve with one camera has it for all views";
    builder.solve().stereo = MarloHost::StereoModel();
    auto const rig = run(builder, {}, {left});
    EXPECT_EQ(rig.messages.size(), 1) << rig.messages.join('\n').toStdString();
    EXPECT_EQ(run(builder, {}, {right}).files, rig.files);

    auto const nothing = run(builder, {}, {});
    EXPECT_TRUE(nothing.files.isEmpty());
    EXPECT_EQ(nothing.messages.size(), 1);
}

TEST(AlembicSolve, NamesAreUniqueInTheWholeArchiveAndThatIsToldOnce)
{
    SolveBuilder builder(2);
    builder.addPoints("wall", {1, 0, 0, 2, 0, 0, 3, 0, 0, 4, 0, 0});
    builder.layer().surfacePoints->names = QStringList{"Point", "Point", "Data", "a/b;=\"ü"};
    auto const result = run(builder);
    OpenArchive const archive(result.files.value("out.abc"));
    EXPECT_EQ(archive.names("scene/Shot 1/Trackers"),
              (std::vector<std::string>{"Point", "Point_0001", "Data_0002", "a_b;=\"ü"}));
    ASSERT_EQ(result.messages.size(), 1) << result.messages.join('\n').toStdString();
    EXPECT_TRUE(result.messages[0].startsWith("out.abc: ") && result.messages[0].contains("\"Point_0001\""));
    EXPECT_EQ(result.failedCount, 0);
}

TEST(AlembicSolve, TheScaleSuitsTheDistanceOfThePointsAndTheLens)
{
    SolveBuilder builder(2);
    builder.solve().camera.pose.positions = {0, 0, 10};
    builder.solve().camera.focalLength.value = 50;
    builder.addPoints("wall", {0, 0, 0});
    double const scale = 10 * 0.20000000447034846 / 50;
    for (auto const& [mode, expected] : {std::pair("suggested", 10 * scale), std::pair("fixed", 10.0)})
    {
        OpenArchive const archive = archiveOf(builder, {{"pointSizeMode", mode}});
        EXPECT_NEAR(archive.matrix("scene/Shot 1")[3][2], expected, 1e-12) << mode;
    }
}

TEST(AlembicSolve, ASolveFarFromTheOriginIsToldOf)
{
    SolveBuilder builder(2);
    builder.addPoints("wall", {1e6 + 0.03, 0, 0, 1e6 + 1.03, 0, 0, 1e6, 1, 0});
    builder.layer().surfacePoints->faceCounts = {3};
    builder.layer().surfacePoints->faceIndices = {0, 1, 2};
    auto const result = run(builder);
    ASSERT_EQ(result.messages.size(), 1) << result.messages.join('\n').toStdString();
    EXPECT_TRUE(result.messages[0].contains("single floats")) << result.messages[0].toStdString();
    OpenArchive const archive(result.files.value("out.abc"));
    EXPECT_GT(cameraOf(archive).getValue().getFarClippingPlane(), 1e6) << "behind the points";
    // Transforms are doubles.
    std::string const first = archive.names("scene/Shot 1/Trackers").at(0);
    EXPECT_DOUBLE_EQ(worldOf(archive, "scene/Shot 1/Trackers/" + first, 0)[3][0], 1e6 + 0.03);
}

TEST(AlembicSolve, AnEndlessSceneIsRefused)
{
    SolveBuilder builder(2);
    builder.addPoints("wall", {0, 1e300, 0});
    EXPECT_THROW(run(builder), KORV_OperationFailed);
}

TEST(AlembicSolve, ValuesThatAreNotFiniteAreHeldAndCounted)
{
    SolveBuilder builder = shot();
    builder.solve().camera.pose.positions[4] = std::nan("");
    auto const result = run(builder);
    EXPECT_GT(result.failedCount, 0);
    OpenArchive const archive(result.files.value("out.abc"));
    for (int frame = 0; frame < 3; ++frame)
    {
        EXPECT_TRUE(std::isfinite(archive.matrix("scene/Shot 1", frame)[3][1]));
    }
}

}
