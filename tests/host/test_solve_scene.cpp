// Cameras of the scene and what of the solve is exported at all.

#include "SolveBuilder.h"

#include "Host/KORV_Exception.h"

#include <gtest/gtest.h>

namespace
{

using Rig = ZN::StereoCamera3DParameterSet;

TEST(Scene, MonoStereoAndNone)
{
    Anm::View const left = Anm::View::defaultView();
    auto const empty = ProjectBuilder().make();
    ZN::Scene3DParameterSet const& none = empty->scene3DParameters();
    EXPECT_FALSE(none.hasMonoCamera() || none.hasStereoCamera());
    EXPECT_EQ(none.cameraParameters(0), nullptr);
    EXPECT_EQ(none.stereoCameraParameters(0), nullptr);
    EXPECT_TRUE(none.features().isEmpty() && none.fileAssets().isEmpty());
    EXPECT_EQ(none.staticFeatureRootName(), "Static_auto_features");

    SolveBuilder builder;
    builder.clip().pixelAspect = 2;
    builder.solve().camera.filmBackWidth = 20;
    builder.solve().referenceFrame = 4;
    auto const mono = builder.make();
    ZN::Scene3DParameterSet const& one = mono->scene3DParameters();
    EXPECT_TRUE(one.hasMonoCamera() && !one.hasStereoCamera());
    EXPECT_EQ(one.cameraParameters(1), nullptr);
    EXPECT_NE(one.cameraParameters(0)->solved().staticValue(left), 0u);
    EXPECT_EQ(one.cameraParameters(0)->filmSize().staticValue(left), 20);
    EXPECT_EQ(one.referenceFrame().staticValue(left), 4u);

    builder.solve().legacy = true;
    double const pixels = builder.make()->scene3DParameters().cameraParameters(0)->filmSize().staticValue(left);
    EXPECT_NEAR(pixels * 2.83469567, 3840, 1e-9);

    builder.solve().legacy = false;
    builder.model.views = QStringList{"left", "right"};
    builder.solve().stereo = MarloHost::StereoModel{true, {0, {0, 9}, {1, 3}}, {5, {}, {}}, {}};
    builder.solve().stereo->shift[1] = {-7, {}, {}};
    auto const stereo = builder.make();
    ZN::Scene3DParameterSet const& two = stereo->scene3DParameters();
    EXPECT_TRUE(!two.hasMonoCamera() && two.hasStereoCamera());
    EXPECT_NE(two.cameraParameters(0), nullptr);
    Rig const& rig = *two.stereoCameraParameters(0);
    EXPECT_EQ(rig.buildViewCamera(Anm::View(2)), nullptr);
    EXPECT_EQ(rig.eyeSeparationMode().staticValue(left), static_cast<unsigned int>(Rig::ConvergedEyes));
    EXPECT_EQ(rig.interaxialSeparation().keyframeCount(left), 2u);
    EXPECT_EQ(rig.interaxialSeparation().keyframeValue(1, left), 3);
    EXPECT_EQ(rig.convergenceAngle().staticValue(left), 5);
    EXPECT_EQ(rig.pictureShift(Anm::View(1)).value(left), -7);
    EXPECT_EQ(rig.pictureShift(left).value(left), 0);
}

TEST(Scene, FeaturesAndAssetsKnowTheirLayer)
{
    SolveBuilder builder;
    builder.addPoints("A", {0, 0, 0}).addFeatures("f", {0, 0, 0}, "A").addFeatures("g", {0, 0, 0});
    builder.solve().assets = {{"a.abc", "A"}, {"b.abc", ""}};
    auto const project = builder.make();
    ZN::Scene3DParameterSet const& scene = project->scene3DParameters();
    EXPECT_EQ(project->sm()->layerFromID(scene.features()[0]->parentID())->name(), "A");
    EXPECT_TRUE(scene.features()[0]->hasParent() && !scene.features()[1]->hasParent());
    EXPECT_EQ(scene.fileAssets()[0]->parentID(), scene.features()[0]->parentID());
    EXPECT_EQ(scene.fileAssets()[1]->parentID(), QString());
    EXPECT_EQ(scene.fileAssets()[1]->path(), "b.abc");
    builder.solve().assets[0].layer = "nobody";
    EXPECT_THROW(builder.make(), KORV_BadArgument);
}

// Layers 1 to 5 of the stack: selected, hidden by its group, without points, plain, plain.
SolveBuilder crowd()
{
    SolveBuilder builder;
    builder.model.groups.push_back({"out", "", true, false, false, {}});
    builder.addPoints("1", {0, 0, 0}).layer().selected = true;
    builder.addPoints("2", {0, 0, 0}).layer().group = "out";
    builder.addLayer("3").layer().selected = true;
    builder.addPoints("4", {0, 0, 0}).addPoints("5", {0, 0, 0});
    builder.layer().meshPoints.swap(builder.layer().surfacePoints);
    builder.addFeatures("loose", {0, 0, 0}).addFeatures("on 2", {0, 0, 0}, "2").addFeatures("on 4", {0, 0, 0}, "4");
    builder.solve().features[0].hidden = true;
    builder.solve().features[2].selected = true;
    return builder;
}

TEST(SolveObjects, AreCutBySelectionVisibilityAndChoice)
{
    SolveBuilder const builder = crowd();
    auto const listed = builder.make()->sm()->layers({});
    struct Case
    {
        char const* what;
        bool selected;
        bool visible;
        Korvane::CameraSolve::ExporterHelper::LayerChoice layers;
        QList<unsigned int> ids;
        QStringList features;
    };
    QStringList const allSets{"loose", "on 2", "on 4"};
    Case const cases[] = {
        {"all", false, false, KV::Layers::All(), {1, 2, 4, 5}, allSets},
        {"by points", false, false, KV::Layers::FilterByPoints(), {1, 2, 4, 5}, allSets},
        {"selected", true, false, KV::Layers::FilterByPoints(), {1}, {"on 4"}},
        {"visible", false, true, KV::Layers::FilterByPoints(), {1, 4, 5}, {"on 4"}},
        {"selected by choice", false, false, KV::Layers::AllSelected(), {1}, allSets},
        {"current", false, false, KV::Layers::Current(), {5}, allSets},
    };
    for (Case const& wanted : cases)
    {
        SCOPED_TRACE(wanted.what);
        SolveHelper solve(builder, wanted.selected, wanted.visible, wanted.layers);
        EXPECT_EQ(solve.helper.layerIDsToExport(), wanted.ids);
        QStringList found;
        for (auto const& features : solve.scene().features())
        {
            solve.helper.setCurrentFeatureSet(*features, false);
            found += solve.helper.numPoints(std::nullopt) > 0 ? QStringList(features->name()) : QStringList();
        }
        EXPECT_EQ(found, wanted.features);
    }
    // An explicit list is of the project's own layers.
    SolveHelper solve(builder);
    QVector<boost::shared_ptr<KORV_Layer const>> const list{solve.project->sm()->findLayer(4, false),
                                                            solve.project->sm()->findLayer(3, false),
                                                            solve.project->sm()->findLayer(2, false)};
    solve.helper.initialise(*solve.project, Anm::View::defaultView(), list, 0, false, false, false, nullptr);
    EXPECT_EQ(solve.helper.layerIDsToExport(), (QList<unsigned int>{2, 4}));
    solve.helper.setCurrentFeatureSet(*solve.scene().features()[0], false);
    EXPECT_EQ(solve.helper.numPoints(std::nullopt), 0u) << "features aren't included";
    EXPECT_EQ(solve.helper.firstFrame().value(), 0);
    EXPECT_EQ(solve.helper.lastFrame().value(), 9);
}

TEST(SolveObjects, PointsHaveIdsThatTellTheirTypeAndNames)
{
    SolveBuilder builder;
    builder.addPoints("A", {0, 0, 0, 1, 0, 0, 2, 0, 0, 3, 0, 0}).addFeatures("set", {9, 9, 9});
    MarloHost::PointCloudModel& surface = *builder.layer().surfacePoints;
    surface.names = QStringList{"a", "b", "c", "d"};
    surface.inaccurate = {1};
    surface.faceCounts = {3};
    surface.faceIndices = {3, 0, 1};
    surface.uvs = {0, 0, 1, 0, 0.25, 0.75, 0, 1};
    builder.layer().meshPoints.emplace();
    builder.layer().meshPoints->positions = {7, 8, 9};
    builder.layer().meshPoints->inaccurate = {0};

    SolveHelper solve(builder);
    KV::NullAccuracySource accuracy;
    accuracy.processNulls(solve.helper.layerIDsToExport(), solve.project.get(), {});
    solve.setLayer(1, false);
    std::vector<unsigned int> const ids = solve.helper.pointIDsToExport(std::nullopt, false);
    ASSERT_EQ(ids.size(), 5u);
    EXPECT_EQ(solve.helper.numPoints(Korvane::CameraSolve::TrackMeshPoint), 1u);
    EXPECT_EQ(solve.helper.pointIDsToExport(Korvane::CameraSolve::SurfacePoint, true),
              (std::vector<unsigned int>{ids[0], ids[1], ids[3]}));
    EXPECT_EQ(solve.helper.pointIDsToExport(Korvane::CameraSolve::TrackMeshPoint, true).size(), 0u);
    QStringList names;
    for (unsigned int const id : ids)
    {
        names += solve.helper.pointName(id, &accuracy);
    }
    EXPECT_EQ(names, (QStringList{"a", "b (inaccurate)", "c", "d", "Vertex 1 (inaccurate)"}));
    EXPECT_EQ(solve.helper.pointName(ids[1], nullptr), "b");
    unsigned int last = ids[4];
    EXPECT_EQ(solve.helper.pointTypeFromID(last), Korvane::CameraSolve::TrackMeshPoint);
    EXPECT_EQ(last, 0u);
    EXPECT_EQ(solve.helper.pointAnimData(ids[4]).positions[0].y, 8);
    EXPECT_EQ(solve.helper.pointAnimData(ids[4] + 1).positions.size(), 0u) << "no such point";
    EXPECT_EQ(solve.helper.pointUVByType(Korvane::CameraSolve::SurfacePoint, 2).y(), 0.75F);
    EXPECT_EQ(solve.helper.pointUVByType(Korvane::CameraSolve::TrackMeshPoint, 0).x(), 0.0F);

    solve.helper.setCurrentFeatureSet(*solve.scene().features()[0], false);
    EXPECT_EQ(solve.helper.pointName(solve.helper.pointIDsToExport(std::nullopt, false).at(0), &accuracy), "Feature 1");
    solve.helper.clearParamData();
    EXPECT_EQ(solve.helper.numPoints(std::nullopt), 0u);
}

// What an exporter does with all points.
void nameAll(KORV_ProjectManager const& project, KV::NullAccuracySource const& accuracy)
{
    Korvane::CameraSolve::ExporterHelper helper;
    helper.initialise(project, Anm::View::defaultView(), KV::Layers::All(), 2147483647, false, false, true, nullptr);
    auto const nameCurrent = [&]
    {
        for (unsigned int const id : helper.pointIDsToExport(std::nullopt, false))
        {
            helper.pointName(id, &accuracy);
        }
    };
    for (unsigned int const id : helper.layerIDsToExport())
    {
        helper.setCurrentLayer(project.sm()->findLayer(id, false), Anm::Context::invalid(), false);
        nameCurrent();
    }
    for (auto const& features : project.scene3DParameters().features())
    {
        helper.setCurrentFeatureSet(*features, false);
        nameCurrent();
    }
}

TEST(NullAccuracy, NamesTenExportedPointsOfTheLayersAndSetsInPlay)
{
    SolveBuilder builder;
    builder.addPoints("A", {0, 0, 0, 1, 0, 0}).layer().surfacePoints->inaccurate = {1};
    builder.addPoints("B", {0, 0, 0}).layer().surfacePoints->inaccurate = {0};
    builder.addFeatures("on A", {0, 0, 0}, "A").addFeatures("on B", {0, 0, 0}, "B").addFeatures("loose", {0, 0, 0});
    for (MarloHost::FeatureSetModel& features : builder.solve().features)
    {
        features.points.inaccurate = {0};
    }
    KV::NullAccuracySource accuracy;
    EXPECT_EQ(accuracy.warnInaccurateNulls(), QString());
    auto project = builder.make();
    accuracy.processNulls({1}, project.get(), {});
    EXPECT_EQ(accuracy.warnInaccurateNulls(), QString()) << "nothing was exported yet";
    nameAll(*project, accuracy);
    QString const words = "The position of these points is too inaccurate to attach something to them: ";
    EXPECT_EQ(accuracy.warnInaccurateNulls(), words + "A: Point 2, on A: Feature 1, loose: Feature 1");

    builder.addFeatures("many", std::vector<double>(60, 0.0));
    for (int i = 0; i < 20; ++i)
    {
        builder.solve().features.back().points.inaccurate.push_back(i);
    }
    project = builder.make();
    accuracy.processNulls({}, project.get(), {});
    nameAll(*project, accuracy);
    EXPECT_TRUE(accuracy.warnInaccurateNulls().startsWith(words + "loose: Feature 1, many: Feature 1, "));
    EXPECT_TRUE(accuracy.warnInaccurateNulls().endsWith("many: Feature 9 and 11 more"));
}

TEST(SolveOptions, AreFourPlainWordsThatDiffer)
{
    KV::StringsUI const ui = KV::CameraSolveExporter::UI();
    EXPECT_EQ(
        (QStringList{ui.includeFeatures.key, ui.useReferenceFrame.key, ui.sceneAtOrigin.key, ui.pointSizeMode.key,
                     ui.pointSizeSuggested, ui.pointSizeFixed}),
        (QStringList{"includeFeatures", "useReferenceFrame", "sceneAtOrigin", "pointSizeMode", "suggested", "fixed"}));
}

}
