#include "Core/UserOptions.h"
#include "CoreFixtures.h"

#include <QVariant>

using namespace Export;

namespace
{

TEST(UserOptions, SelectionsCompareNamesOnlyWhenALayerIsSpecified)
{
    struct
    {
        LayerSelection left;
        LayerSelection right;
        bool equal;
    } const cases[] = {
        {{ZN::SelectedLayer, "stale"}, {ZN::SelectedLayer, ""}, true},
        {{ZN::AllLayers, "a"}, {ZN::AllLayers, "b"}, true},
        {{ZN::AllLayers, "a"}, {ZN::VisibleLayers, "a"}, false},
        {{ZN::SpecifiedLayer, "a"}, {ZN::SpecifiedLayer, "a"}, true},
        {{ZN::SpecifiedLayer, "a"}, {ZN::SpecifiedLayer, "b"}, false},
        {{ZN::SpecifiedLayer, ""}, {ZN::SelectedLayer, ""}, false},
    };
    for (auto const& testCase : cases)
    {
        EXPECT_EQ(testCase.left == testCase.right, testCase.equal) << "case " << &testCase - cases;
        EXPECT_EQ(testCase.left != testCase.right, !testCase.equal) << "case " << &testCase - cases;
    }
    EXPECT_EQ((LayerSelection{ZN::SpecifiedLayer, "a"}).specifiedLayer(), std::optional<QString>("a"));
    EXPECT_EQ((LayerSelection{ZN::AllLayers, "a"}).specifiedLayer(), std::nullopt);
}

TEST(UserOptions, EveryTrackingOptionCounts)
{
    UserTrackingOptions const base;
    EXPECT_EQ(base.trackingOption, ZN_TRACKING_OPTION_ADJUSTED);
    EXPECT_FALSE(base.referenceFrame.time().isValid());
    EXPECT_TRUE(base == UserTrackingOptions());

    std::function<void(UserTrackingOptions&)> const changes[] = {
        [](UserTrackingOptions& options) { options.trackingOption = ZN_TRACKING_OPTION_BASIC; },
        [](UserTrackingOptions& options) { options.invert = true; },
        [](UserTrackingOptions& options) { options.undistort = true; },
        [](UserTrackingOptions& options)
        { options.referenceFrame = Anm::Context(Anm::Time::fromInt(0), Anm::View::defaultView()); },
        [](UserTrackingOptions& options) { options.layerSelection.mode = ZN::AllLayers; },
        [](UserTrackingOptions& options) { options.viewsToExport.push_back(Anm::View::defaultView()); },
    };
    for (auto const& change : changes)
    {
        UserTrackingOptions changed;
        change(changed);
        EXPECT_FALSE(base == changed) << "change " << &change - changes;
        EXPECT_TRUE(base != changed) << "change " << &change - changes;
    }
}

TEST(UserOptions, ShapeOptionsCompareSelectionAndViews)
{
    Anm::View const view = Anm::View::defaultView();
    EXPECT_TRUE((UserShapeOptions{{ZN::AllLayers, ""}, {view}}) == (UserShapeOptions{{ZN::AllLayers, "x"}, {view}}));
    EXPECT_TRUE((UserShapeOptions{{ZN::AllLayers, ""}, {view}}) != (UserShapeOptions{{ZN::AllLayers, ""}, {}}));
    EXPECT_TRUE((UserShapeOptions{{}, {view}}) != (UserShapeOptions{{}, {Anm::View(view.id() + 1)}}));
}

TEST(UserOptions, CameraOptionsCompareTheirMaps)
{
    using Map = QMap<QString, QVariant>;
    auto const options = [](std::any customData) {
        return UserCameraSolveOptions{KV::CameraSolveExporter::AllObjects, std::move(customData)};
    };
    EXPECT_TRUE(options({}) == options(42));
    EXPECT_TRUE(options({}) == options(Map()));
    EXPECT_TRUE(options(Map{{"a", true}}) == options(Map{{"a", true}}));
    EXPECT_TRUE(options(Map{{"a", true}}) != options(Map{{"a", false}}));
    EXPECT_TRUE(options(Map{{"a", true}}) != options(Map{{"b", true}}));
    EXPECT_TRUE(options(Map{{"a", true}}) != options(Map{{"a", true}, {"b", true}}));
    EXPECT_TRUE(options({}) != (UserCameraSolveOptions{KV::CameraSolveExporter::VisibleObjects, {}}));
}

}
