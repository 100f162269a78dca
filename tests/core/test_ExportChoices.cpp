#include "Core/ExportFunctions.h"
#include "Core/ExporterFactories.h"
#include "CoreFixtures.h"
#include "marlohost/Services.h"

using namespace Export;
using namespace CoreTest;

namespace
{

using Info = Preset::ExportInfo;

MarloHost::LayerModel selected(MarloHost::LayerModel model)
{
    model.selected = true;
    return model;
}

MarloHost::LayerModel hidden(MarloHost::LayerModel model)
{
    model.hidden = true;
    return model;
}

MarloHost::LayerModel inGroup(MarloHost::LayerModel model, QString const& group)
{
    model.group = group;
    return model;
}

TEST(FilenameSuggestion, IsTheLayersNameWhenTheSelectionReachesOne)
{
    struct
    {
        std::vector<MarloHost::LayerModel> layers;
        QString current;
        LayerSelection selection;
        QString expected;
    } const cases[] = {
        {{}, "", {ZN::AllLayers, ""}, "sh.010"},
        {{layer("a")}, "a", {ZN::AllLayers, ""}, "a"},
        {{layer("a")}, "", {ZN::AllLayers, ""}, "sh.010"},
        {{layer("a"), layer("b")}, "a", {ZN::AllLayers, ""}, "sh.010"},
        {{layer("a"), hidden(layer("b"))}, "a", {ZN::AllLayers, ""}, "sh.010"},
        {{layer("a"), hidden(layer("b"))}, "a", {ZN::VisibleLayers, ""}, "a"},
        {{layer("a"), inGroup(layer("b"), "hidden group")}, "a", {ZN::VisibleLayers, ""}, "a"},
        {{hidden(layer("a"))}, "a", {ZN::VisibleLayers, ""}, "sh.010"},
        {{layer("a"), layer("b")}, "a", {ZN::SelectedLayer, ""}, "sh.010"},
        {{layer("a"), selected(layer("b"))}, "b", {ZN::SelectedLayer, ""}, "b"},
        // The name of the current layer, though another one is selected.
        {{layer("a"), selected(layer("b"))}, "a", {ZN::SelectedLayer, ""}, "a"},
        {{layer("a"), inGroup(layer("b"), "inner")}, "b", {ZN::SelectedLayer, ""}, "b"},
        {{selected(layer("a")), selected(layer("b"))}, "a", {ZN::SelectedLayer, ""}, "sh.010"},
        {{layer("a"), layer("b")}, "a", {ZN::SpecifiedLayer, "b"}, "b"},
        {{layer("b"), layer("b")}, "", {ZN::SpecifiedLayer, "b"}, "b"},
        {{layer("a")}, "a", {ZN::SpecifiedLayer, "c"}, "sh.010"},
    };
    for (auto const& testCase : cases)
    {
        MarloHost::ProjectModel model = projectOf(testCase.layers, testCase.current);
        model.groups = {{"outer", "", false, true, false},
                        {"inner", "outer", false, false, false},
                        {"hidden group", "", true, false, false}};
        auto const project = MarloHost::makeProject(model, "/shots/sh.010.json");
        EXPECT_EQ(filenameSuggestion(*project, testCase.selection), testCase.expected) << "case " << &testCase - cases;
    }
    EXPECT_EQ(filenameSuggestion(*MarloHost::makeProject(projectOf({})), {}), QString("export")) << "not saved yet";
}

TEST(SuitableReferenceFrame, FollowsTheCurrentLayer)
{
    using Stabilize = MarloHost::StabilizeModel;
    auto const unset = std::optional<int>();
    struct
    {
        bool hasCurrent;
        std::optional<ZN_TRACKING_OPTION> option;
        std::optional<int> inPoint;
        std::optional<int> outPoint;
        Stabilize stabilize;
        int expected;
    } const cases[] = {
        {false, ZN_TRACKING_OPTION_BASIC, unset, unset, {}, 7},
        {false, ZN_TRACKING_OPTION_STABILIZED, unset, unset, {}, 7},
        {true, std::nullopt, unset, unset, {}, 33},
        {true, ZN_TRACKING_OPTION_BASIC, 10, 60, {{}, {}, {20}}, 33},
        {true, ZN_TRACKING_OPTION_OFFSET, unset, unset, {}, 33},
        {true, ZN_TRACKING_OPTION_STABILIZED, unset, unset, {}, 0},
        {true, ZN_TRACKING_OPTION_STABILIZED, 10, 60, {}, 10},
        {true, ZN_TRACKING_OPTION_STABILIZED, 10, 60, {15, 50, {}}, 15},
        {true, ZN_TRACKING_OPTION_STABILIZED, 10, 60, {5, 50, {}}, 10},
        {true, ZN_TRACKING_OPTION_STABILIZED, 10, 60, {15, 50, {12, 20, 30}}, 20},
        {true, ZN_TRACKING_OPTION_STABILIZED, 10, 60, {15, 50, {15, 20}}, 15},
        {true, ZN_TRACKING_OPTION_STABILIZED, 10, 60, {15, 50, {12, 50}}, 50},
        {true, ZN_TRACKING_OPTION_STABILIZED, 10, 60, {15, 50, {12, 51}}, 15},
        {true, ZN_TRACKING_OPTION_STABILIZED, 10, 60, {15, 90, {70}}, 15},
    };
    for (auto const& testCase : cases)
    {
        MarloHost::LayerModel plane = layer("plane");
        plane.referenceFrame = 33;
        plane.inPoint = testCase.inPoint;
        plane.outPoint = testCase.outPoint;
        plane.stabilize = testCase.stabilize;
        auto const project = MarloHost::makeProject(projectOf({plane}, testCase.hasCurrent ? "plane" : ""));
        EXPECT_EQ(suitableReferenceFrame(*project, testCase.option).frameValue(), testCase.expected)
            << "case " << &testCase - cases;
    }
}

TEST(SuitableReferenceFrame, KeepsTheViewOfTheCurrentFrameWhenStabilized)
{
    MarloHost::ProjectModel model = projectOf({layer("plane")}, "plane");
    model.views = QStringList{"left", "right"};
    model.currentView = "right";
    auto const project = MarloHost::makeProject(model);
    Anm::Context expected = project->currentFrame();
    expected.setTime(Anm::Time::fromInt(0));
    EXPECT_EQ(suitableReferenceFrame(*project, ZN_TRACKING_OPTION_STABILIZED), expected);
}

TEST(ExportChoices, CopyNeedsOneFileAndTheClipboard)
{
    EXPECT_TRUE(supportsCopy(TrackingDataFormat::AE_TRANSFORM()));
    EXPECT_TRUE(supportsCopy(ShapeDataFormat::PREMIERE_SHAPE()));
    EXPECT_FALSE(supportsCopy(TrackingDataFormat::NUKE_ASCII()));
    EXPECT_FALSE(supportsCopy(TrackingDataFormat::ALEMBIC_MESH()));
}

TEST(CreateExporter, FindsFormatsByTheirKind)
{
    auto const project = MarloHost::makeProject(projectOf({layer("plane")}, "plane"));
    auto const tracking =
        createExporter({"after_effects_transform", Info::Tracking, UserTrackingOptions(), {}}, *project);
    ASSERT_TRUE(tracking);
    EXPECT_TRUE(dynamic_cast<TrackingExporterWrapper*>(tracking.get()));
    EXPECT_EQ(tracking->formatDisplayName(), QString("After Effects Transform Data"));

    ShapeDataFormat const shapes("Custom Shapes", "custom", ".txt", "", "", {}, false, SaveToFile);
    CameraSolveFormat const camera("Custom Camera", "custom", ".txt", "", "", 1, BelongsToLayers, SaveToFile, false);
    ShapeExporterFactory::registerCustomExporter(shapes, std::make_shared<FakeShapeExporter>());
    CameraSolveExporterFactory::registerCustomExporter(camera, std::make_shared<FakeCameraSolveExporter>());
    auto const shape = createExporter({"custom", Info::Shape, UserShapeOptions(), {}}, *project);
    auto const inPlugin = createExporter({"custom", Info::Shape, UserShapeOptions(), {}}, *projectInHost({}));
    auto const solve = createExporter({"custom", Info::Camera, UserCameraSolveOptions(), {}}, *project);
    ShapeExporterFactory::unregisterExporter(shapes);
    CameraSolveExporterFactory::unregisterExporter(camera);

    EXPECT_EQ(shape->formatDisplayName(), QString("Custom Shapes"));
    EXPECT_EQ(solve->formatDisplayName(), QString("Custom Camera"));
    // The flag of the format makes the name follow the layers.
    EXPECT_EQ(solve->filenameSuggestion(*project), QString("plane"));
    MarloHost::MemoryClipboard clipboard;
    shape->setClipboardText(clipboard, "text");
    EXPECT_EQ(clipboard.text(), QString("text to desktop"));
    inPlugin->setClipboardText(clipboard, "text");
    EXPECT_EQ(clipboard.text(), QString("text to host"));
}

TEST(CreateExporter, RefusesUnknownFormatsAndOptionsOfAnotherKind)
{
    auto const project = MarloHost::makeProject(projectOf({}));
    for (Info::Type const type : {Info::Tracking, Info::Shape, Info::Camera})
    {
        EXPECT_EQ(thrown<KORV_BadArgument>(
                      [&] {
                          createExporter({"nobodys", type, UserShapeOptions(), {}}, *project);
                      }),
                  QString("Invalid export format name"));
    }
    EXPECT_THROW(createExporter({"after_effects_transform", Info::Tracking, UserShapeOptions(), {}}, *project),
                 std::bad_variant_access);
    EXPECT_EQ(createExporter({"after_effects_transform", static_cast<Info::Type>(3), {}, {}}, *project), nullptr);
}

}
