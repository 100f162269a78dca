// Cameras, points and objects of a solve as exporters get them: worked numbers, and points
// projected through what was delivered against the project's own camera.

#include "Projection.h"
#include "SolveBuilder.h"

#include <gtest/gtest.h>

namespace
{

using namespace Korvane::CameraSolve;
using Eigen::Matrix3d;
using Eigen::Vector3d;
using Sabrel::Matrix33;
using Sabrel::Vector3;

Matrix33 const UNIT;
Matrix33 const TURNED = Matrix33::diagonal(1, -1, -1);
constexpr double PIXELS_PER_MILLIMETRE = 1920.0 / 36;

Vector3d toEigen(Vector3 const& v)
{
    return {v.x, v.y, v.z};
}

void expectNear(Vector3 const& found, Vector3d const& wanted, char const* what, double tolerance = 1e-9)
{
    EXPECT_LT((toEigen(found) - wanted).norm(), tolerance) << what << ": " << toEigen(found).transpose();
}

TEST(SolveCamera, FocalLengthsComeInTheUnitsThatWereAskedFor)
{
    SolveBuilder builder(3);
    builder.clip().pixelAspect = 2;
    builder.clip().interlaced = true;
    builder.solve().camera.focalLength = {0, {0, 2}, {20, 40}};
    // 36 mm carry 1920 pixels that are twice as wide as high.
    double const square = 2 * PIXELS_PER_MILLIMETRE;
    SolveHelper solve(builder);
    EXPECT_NEAR(solve.helper.referenceFocalLength(ScaledMillimetres), 20 * square, 1e-9);
    EXPECT_EQ(solve.helper.referenceFocalLength(ScaledMillimetres, 3), 60);
    EXPECT_EQ(solve.helper.referenceFocalLength(Millimetres), 20);
    EXPECT_EQ(solve.helper.filmBack().x, 18);
    EXPECT_EQ(solve.helper.filmBack().y, 18 * 1080 / 1920.0);
    EXPECT_EQ(solve.helper.isInterlaced(), true);

    CameraAnimData data = solve.camera();
    EXPECT_EQ(data.focalLengths, (std::vector<float>{20, 30, 40})) << "millimetres to begin with";
    EXPECT_TRUE(data.focalIsAnimated);
    solve.helper.setFocalLengthExportUnits(ScaledMillimetres);
    EXPECT_FLOAT_EQ(solve.camera().focalLengths[1], static_cast<float>(30 * square));
    solve.helper.setFocalLengthExportUnits(ScaledMillimetres, 2.5);
    solve.helper.setFocalDistanceFromCamera(*solve.scene().cameraParameters(0));
    EXPECT_EQ(solve.helper.focalDistance(), 50);

    builder.solve().legacy = true;
    builder.solve().camera.focalLength.values = {20, 20};
    SolveHelper legacy(builder);
    legacy.helper.setFocalLengthExportUnits(ScaledMillimetres, 2.5);
    EXPECT_NEAR(legacy.helper.referenceFocalLength(Millimetres), 20 * square, 1e-9) << "in pixels, whatever is asked";
    EXPECT_FLOAT_EQ(legacy.camera().focalLengths[2], static_cast<float>(20 * square));
    EXPECT_FALSE(legacy.camera().focalIsAnimated);
    EXPECT_TRUE(legacy.helper.isOldSolveData());

    SolveBuilder unsolved;
    unsolved.model.solve.reset();
    SolveHelper const none(unsolved);
    EXPECT_EQ(none.helper.referenceFocalLength(ScaledMillimetres), 0);
}

TEST(SolveScene, IsMultipliedInLeftOutOrApart)
{
    SolveBuilder builder(1);
    builder.solve().scene = {{}, {10, 0, 0}, {0, 0, 90}, {2}};
    builder.solve().camera.pose = {{}, {1, 2, 3}, {}, {}};
    builder.addPoints("A", {0, 1, 0}).layer().pose = {{}, {0, 0, 1}, {}, {}};
    builder.solve().assets = {{"loose", "", {{}, {1, 0, 0}, {}, {3}}}, {"on A", "A", {{}, {1, 0, 0}, {}, {}}}};
    struct Case
    {
        SceneTransformMode mode;
        Vector3d camera;
        double cameraTurn;
        Vector3d point;
        Vector3d asset;
        double assetScale;
        Vector3d scene;
        double sceneScale;
    };
    Case const cases[] = {
        {SceneApplied, {30, -10, -30}, -90, {40, 0, -10}, {50, -10, 0}, 6, {0, 0, 0}, 1},
        {SceneLeftOut, {5, -10, -15}, 0, {0, -5, -5}, {5, 0, 0}, 3, {0, 0, 0}, 1},
        {SceneApart, {5, -10, -15}, 0, {0, -5, -5}, {5, 0, 0}, 3, {50, 0, 0}, 2},
    };
    for (Case const& wanted : cases)
    {
        SCOPED_TRACE(wanted.mode);
        SolveHelper solve(builder);
        solve.helper.setCoordinateTransform(TURNED, TURNED, 5, wanted.mode);
        expectNear(solve.camera().positions[0], wanted.camera, "camera");
        expectNear(solve.camera().rotations[0], {0, 0, wanted.cameraTurn}, "camera turn");
        solve.setLayer(1, true);
        PointAnimData const point = solve.helper.pointAnimData(0);
        expectNear(point.positions[0], wanted.point, "point");
        expectNear(point.rotations[0], {0, 0, wanted.cameraTurn}, "turn of what carries the point");
        EXPECT_EQ(point.scales[0].x, 100 * wanted.assetScale / 3);
        auto const assets = solve.helper.fileAssetsToExport();
        PointAnimData const loose = solve.helper.collectPointData(assets[0]->points(), true, true);
        expectNear(loose.positions[0], wanted.asset, "asset without a layer");
        EXPECT_EQ(loose.scales[0].z, wanted.assetScale);
        expectNear(solve.helper.collectPointData(assets[1]->points(), true, true).positions[0], {5, 0, 0},
                   "asset relative to its layer");
        // In a space of its own the point knows no scene.
        solve.setLayer(1, false);
        expectNear(solve.helper.pointAnimData(0).positions[0], {0, -5, 0}, "point in its layer");
        EXPECT_EQ(solve.helper.pointAnimData(0).scales[0].y, 100);
        KeyframePRS const scene = solve.helper.sceneTransformForExport();
        expectNear(scene.position, wanted.scene, "scene");
        expectNear(scene.rotation, {0, 0, wanted.mode == SceneApart ? -90.0 : 0.0}, "scene turn");
        EXPECT_EQ(scene.scale.x, wanted.sceneScale);
    }
}

TEST(SolvePoints, MoveWithTheirLayerAndItsGroups)
{
    SolveBuilder builder(11);
    builder.addMovingChain();
    SolveHelper solve(builder);
    solve.setLayer(1, true);
    PointAnimData const world = solve.helper.pointAnimData(0);
    ASSERT_EQ(world.positions.size(), 11u);
    EXPECT_EQ(world.contexts[10].frameValue(), 10);
    double const half = std::sqrt(0.5);
    // Frame 5: the layer turns x by 45 degrees and is at z 2, the group doubles that and is at x 5.
    expectNear(world.positions[0], {1, 0, 0}, "frame 0");
    expectNear(world.positions[5], {5 + 2 * half, 2 * half, 4}, "frame 5");
    expectNear(world.positions[10], {10, 3, 12}, "frame 10");
    expectNear(world.rotations[5], {0, 0, 45}, "turn");
    EXPECT_DOUBLE_EQ(world.scales[5].x, 200);

    solve.setLayer(1, false);
    PointAnimData const own = solve.helper.pointAnimData(0);
    ASSERT_EQ(own.positions.size(), 1u) << "relative to the layer it rests";
    expectNear(own.positions[0], {1, 0, 0}, "own");
    EXPECT_EQ(own.contexts[0].frameValue(), 0);

    Korvane::LayerBase const& layer = *solve.project->sm()->findLayer(1, false);
    PointAnimData const relative = solve.helper.collectPointData(layer.points(), false, false);
    expectNear(relative.positions[5], {0, 0, 2}, "layer in its group");
    EXPECT_EQ(relative.scales[5].x, 1);
    PointAnimData const group = solve.helper.collectPointData(layer.parentGroup(false)->points(), true, false);
    expectNear(group.positions[5], {5, 0, 0}, "group");
    EXPECT_EQ(group.scales[5].y, 2);
    EXPECT_EQ(solve.helper.collectPointData(layer.points(), true, true).positions.size(), 1u);
}

// With two groups above it, the layer's place is that within the outer one.
TEST(SolvePoints, AnInnerGroupCountsForItsLayer)
{
    SolveBuilder builder(11);
    builder.addMovingChain();
    builder.model.groups[0].parent = "ferry";
    builder.model.groups.push_back({"ferry", "", false, false, true, {{0, 10}, {0, 0, 0, 0, 50, 0}, {}, {}}});
    SolveHelper solve(builder);
    Korvane::LayerBase const& layer = *solve.project->sm()->findLayer(1, false);
    PointAnimData const relative = solve.helper.collectPointData(layer.points(), false, false);
    expectNear(relative.positions[5], {5, 0, 4}, "in the outer group");
    EXPECT_EQ(relative.scales[5].x, 2);
    expectNear(solve.helper.collectPointData(layer.points(), true, false).positions[5], {5, 25, 4}, "in the world");
}

TEST(SolvePoints, ThoseWithKeysOfTheirOwnAreLinearBetween)
{
    SolveBuilder builder(7);
    builder.addPoints("A", {0, 0, 0, 1, 1, 1, 8, 0, 0, 1, 5, 1});
    MarloHost::PointCloudModel& points = *builder.layer().surfacePoints;
    points.frames = {1, 5};
    points.faceCounts = {3};
    points.faceIndices = {0, 1, 0};
    builder.layer().pose = {{}, {0, 0, 100}, {}, {}};
    SolveHelper solve(builder);
    solve.setLayer(1, false);
    PointAnimData const first = solve.helper.pointAnimData(0);
    ASSERT_EQ(first.positions.size(), 7u);
    EXPECT_EQ(first.contexts.size(), 7u);
    EXPECT_EQ(first.rotations.size(), 7u);
    EXPECT_EQ(first.scales.size(), 7u);
    double const expected[] = {0, 0, 2, 4, 6, 8, 8};
    for (std::size_t frame = 0; frame < 7; ++frame)
    {
        EXPECT_EQ(first.positions[frame].x, expected[frame]);
    }
    MeshAnimData const animated = solve.helper.meshData(SurfacePoint, true);
    ASSERT_EQ(animated.points.size(), 7u);
    expectNear(animated.points[2][1], {1, 2, 1}, "mesh at frame 2");
    EXPECT_EQ(animated.faceIndices, points.faceIndices);

    Anm::Context const reference(Anm::Time::fromInt(3), Anm::View::defaultView());
    solve.helper.setCurrentLayer(solve.project->sm()->findLayer(1, false), reference, true);
    MeshAnimData const still = solve.helper.meshData(SurfacePoint, false);
    ASSERT_EQ(still.points.size(), 1u);
    EXPECT_EQ(still.contexts[0].frameValue(), 3);
    expectNear(still.points[0][0], {4, 0, 100}, "mesh at its reference frame, in the world");
    EXPECT_TRUE(solve.helper.meshData(TrackMeshPoint, true).points.empty());
}

TEST(SolvePoints, FeaturesHangOnTheirLayerOrOnTheRoot)
{
    SolveBuilder builder(11);
    builder.addMovingChain();
    builder.addFeatures("loose", {1, 2, 3}).addFeatures("on the door", {1, 0, 0}, "door");
    builder.solve().featureRoot = {{}, {0, 0, 10}, {0, 90, 0}, {2}};
    SolveHelper solve(builder);
    auto const& sets = solve.scene().features();
    solve.helper.setCurrentFeatureSet(*sets[0], false);
    unsigned int const id = solve.helper.pointIDsToExport(std::nullopt, false).at(0);
    expectNear(solve.helper.pointAnimData(id).positions[0], {1, 2, 3}, "relative to the root");
    solve.helper.setCurrentFeatureSet(*sets[0], true);
    // Ry(90) carries (1, 2, 3) to (3, 2, -1).
    expectNear(solve.helper.pointAnimData(id).positions[0], {6, 4, 8}, "in the world");
    expectNear(solve.helper.collectPointData(solve.scene().staticFeatureRoot(), true, false).positions[0], {0, 0, 10},
               "root");
    solve.helper.setCurrentFeatureSet(*sets[1], true);
    expectNear(solve.helper.pointAnimData(id).positions[10], {10, 3, 12}, "with its layer");

    PointAnimData const* const cached = solve.helper.cachedPointAnimData(true, 1, 0);
    ASSERT_NE(cached, nullptr);
    expectNear(cached->positions[10], {10, 3, 12}, "point of another layer than the current one");
    EXPECT_EQ(solve.helper.cachedPointAnimData(true, 1, 0), cached);
    EXPECT_EQ(solve.helper.cachedPointAnimData(true, 1, 1), nullptr);
    EXPECT_EQ(solve.helper.cachedPointAnimData(true, 7, 0), nullptr);
    EXPECT_NE(solve.helper.cachedPointAnimData(false, 0, id), nullptr) << "of the current set";
    // The feature on the door is 1 away, the loose one the square root of 116.
    EXPECT_NEAR(solve.helper.suggestPointScale(false, true, {0, 0, 0}), 0.5 * (1 + std::sqrt(116.0)), 1e-12);
    EXPECT_NEAR(solve.helper.suggestPointScale(true, false, {1, 0, 2}), 2, 1e-12);
    EXPECT_EQ(solve.helper.suggestPointScale(false, false, {0, 0, 0}), 0);
}

/// The rotation that delivered angles stand for.
Matrix3d rotationOf(Vector3 const& degrees, int order)
{
    using Projection::turn;
    Matrix3d const x = turn(degrees.x, 0, 0).toRotationMatrix();
    Matrix3d const y = turn(0, degrees.y, 0).toRotationMatrix();
    Matrix3d const z = turn(0, 0, degrees.z).toRotationMatrix();
    return order == 0 ? Matrix3d(z * y * x) : Matrix3d(x * y * z);
}

Matrix3d axesOf(Matrix33 const& matrix)
{
    return Eigen::Map<Eigen::Matrix<double, 3, 3, Eigen::RowMajor> const>(matrix.m.data());
}

struct Delivery
{
    char const* what;
    bool legacy;
    Matrix33 axes;
    int order;
    SceneTransformMode mode;
    int side;
};

std::ostream& operator<<(std::ostream& out, Delivery const& delivery)
{
    return out << delivery.what;
}

class Delivered : public testing::TestWithParam<Delivery>
{
};

// The one check that finds nearly every fault: points as they were delivered, through the
// camera as it was delivered, against the project's own camera.
TEST_P(Delivered, PointsProjectToThePixelsOfTheProject)
{
    Delivery const& delivery = GetParam();
    SolveBuilder builder(11);
    builder.clip().pixelAspect = 2;
    builder.turnCamera().poseScene().addMovingChain();
    builder.addFeatures("loose", {0.5, -1.5, 2});
    builder.solve().featureRoot = {{}, {1, 0, 0}, {10, 20, 30}, {1.5}};
    builder.solve().legacy = delivery.legacy;
    if (delivery.side != 0)
    {
        builder.model.views = QStringList{"left", "right"};
        builder.solve().stereo = MarloHost::StereoModel{true, {0, {0, 10}, {0.5, 1.5}}, {6, {}, {}}, {}};
    }
    SolveHelper solve(builder);
    solve.helper.setCoordinateTransform(delivery.axes, delivery.axes, 7, delivery.mode);
    solve.helper.setRotateOrder(delivery.order);
    boost::shared_ptr<ZN::Camera3DParameterSet> eye;
    if (delivery.side != 0)
    {
        eye = solve.scene().stereoCameraParameters(0)->buildViewCamera(Anm::View(delivery.side < 0 ? 0 : 1));
    }
    CameraAnimData const camera = solve.helper.cameraAnimData(eye ? *eye : *solve.scene().cameraParameters(0));
    solve.setLayer(1, true);
    PointAnimData const door = solve.helper.pointAnimData(0);
    solve.helper.setCurrentFeatureSet(*solve.scene().features()[0], true);
    PointAnimData const loose = solve.helper.pointAnimData(solve.helper.pointIDsToExport(std::nullopt, false).at(0));

    bool const ownAxes = delivery.legacy && delivery.axes == UNIT;
    Matrix3d const axes = axesOf(ownAxes ? TURNED : delivery.axes);
    for (std::size_t frame = 0; frame < 11; ++frame)
    {
        Matrix3d turn = rotationOf(camera.rotations[frame], delivery.legacy && !ownAxes ? 21 : delivery.order);
        if (ownAxes)
        {
            Vector3 const angles = camera.rotations[frame];
            turn = rotationOf({angles.x, -angles.y, angles.z}, 0).transpose();
        }
        // Back to the scene's own axes: A is its own inverse in all cases.
        Matrix3d const inScene = ownAxes ? turn : Matrix3d(axes * turn * axes);
        auto const seen = [&](Vector3 const& point)
        {
            Vector3d const away = axes * (toEigen(point) - toEigen(camera.positions[frame]));
            double const millimetres =
                delivery.legacy ? camera.focalLengths[frame] / (2 * PIXELS_PER_MILLIMETRE) : camera.focalLengths[frame];
            return Projection::toPixels(builder.model, inScene.transpose() * away, millimetres);
        };
        auto const at = static_cast<double>(frame);
        Vector3d const doorPoint = Projection::layerAt(builder.model, builder.model.layers[0], at) *
                                   Projection::pointAt(*builder.model.layers[0].surfacePoints, 0, at);
        Vector3d const loosePoint = Projection::poseAt(builder.solve().featureRoot, at) *
                                    Projection::pointAt(builder.solve().features[0].points, 0, at);
        auto const wanted = [&](Vector3d const& p) { return Projection::project(builder.model, p, at, delivery.side); };
        // Focal lengths are floats.
        EXPECT_LT((seen(door.positions[frame]) - wanted(doorPoint)).norm(), 1e-3) << frame;
        EXPECT_LT((seen(loose.positions[0]) - wanted(loosePoint)).norm(), 1e-3) << frame;
    }
}

INSTANTIATE_TEST_SUITE_P(Table, Delivered,
                         testing::Values(Delivery{"as it is", false, UNIT, 0, SceneLeftOut, 0},
                                         Delivery{"moving axes, scene applied", false, UNIT, 21, SceneApplied, 0},
                                         Delivery{"turned over, scene applied", false, TURNED, 21, SceneApplied, 0},
                                         Delivery{"turned over, static axes", false, TURNED, 0, SceneApart, 0},
                                         Delivery{"left eye", false, TURNED, 21, SceneApplied, -1},
                                         Delivery{"right eye", false, UNIT, 0, SceneApplied, 1},
                                         Delivery{"legacy, axes of its own", true, UNIT, 14, SceneApplied, 0},
                                         Delivery{"legacy, turned over", true, TURNED, 0, SceneApplied, 0}));

TEST(SolveCamera, RoundingMovesNoAngleOfACameraInGimbalLock)
{
    // A quarter turn about the middle axis is gimbal lock in both orders; the poses of scene and
    // camera multiply to it with noise in the last digits.
    SolveBuilder builder(100);
    std::vector<int> frames;
    MarloHost::PoseModel& pose = builder.solve().camera.pose;
    for (int frame = 0; frame < 100; ++frame)
    {
        pose.frames.push_back(frame);
        pose.positions.insert(pose.positions.end(), {0.0, 0.0, 0.1 * frame});
        pose.rotations.insert(pose.rotations.end(), {0.0, 50.0 + 1e-15 * frame, 1e-14 * (frame % 7)});
    }
    builder.solve().scene = {{}, {0, 0, 0}, {0, 40, 0}, {}};
    SolveHelper solve(builder);
    for (int const order : {0, 21})
    {
        solve.helper.setRotateOrder(order);
        CameraAnimData const data = solve.camera();
        for (std::size_t frame = 1; frame < data.rotations.size(); ++frame)
        {
            expectNear(data.rotations[frame] - data.rotations[frame - 1], {0, 0, 0}, "step", 1e-6);
        }
    }
    EXPECT_THROW(solve.helper.setRotateOrder(24), std::range_error);
}

TEST(SolveCamera, ATiltIntoGimbalLockLeavesTheOuterAnglesAlone)
{
    SolveBuilder builder(3);
    builder.solve().camera.pose = {{0, 1, 2}, {0, 0, 0, 0, 0, 1, 0, 0, 2}, {10, 89, 30, 10, 90, 30, 14, 90, 30}, {}};
    SolveHelper solve(builder);
    CameraAnimData const data = solve.camera();
    expectNear(data.rotations[0], {10, 89, 30}, "before");
    expectNear(data.rotations[1], {10, 90, 30}, "locked", 1e-6);
    expectNear(data.rotations[2], {14, 90, 30}, "turning on in the lock", 1e-6);
}

TEST(SolveCamera, RotationsTakeTheShorterWay)
{
    SolveBuilder builder(3);
    builder.solve().camera.pose = {{0, 2}, {0, 0, 0, 0, 0, 4}, {0, 170, 0, 0, -170, 0}, {}};
    SolveHelper solve(builder);
    CameraAnimData const data = solve.camera();
    Vector3d const ahead = rotationOf(data.rotations[1], 0) * Vector3d(0, 0, -1);
    EXPECT_LT((ahead - Vector3d(0, 0, 1)).norm(), 1e-12) << "over 180 degrees, not over 0";
    EXPECT_EQ(data.positions[1].z, 2);
}

TEST(SolveHelpers, CopiesLiveOnTheirOwn)
{
    SolveBuilder builder(11);
    builder.addMovingChain();
    SolveHelper solve(builder);
    solve.setLayer(1, true);
    EXPECT_EQ(solve.helper.pointAnimData(0).positions.size(), 11u);
    ExporterHelper copy = solve.helper;
    copy.setCoordinateTransform(UNIT, UNIT, 2, SceneApplied);
    solve.helper.clearParamData();
    expectNear(copy.pointAnimData(0).positions[10], {20, 6, 24}, "copy");
    EXPECT_EQ(solve.helper.numPoints(std::nullopt), 0u);
    ExporterHelper const moved = std::move(copy);
    expectNear(moved.pointAnimData(0).positions[10], {20, 6, 24}, "moved");
}

}
