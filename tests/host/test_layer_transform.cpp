// What the host says of tracked frames, of the camera of a clip, and of the motion that it sees.

#include "ProjectBuilder.h"

#include "Host/KORV_Clip.h"
#include "Host/ZN_ClipInfo.h"

#include <gtest/gtest.h>

namespace
{

Anm::Context at(double frame, int view = 0)
{
    return Anm::Context(Anm::Time::fromDouble(frame), Anm::View(view));
}

/// A slide by (10, -20) a frame, tracked in frames 1, 2 and 5 of the right view.
ProjectBuilder shot()
{
    ProjectBuilder builder(8, 1000, 500);
    builder.model.views = QStringList({"left", "right"});
    builder.clip().interlaced = true;
    builder.clip().pixelAspect = 2;
    builder.clip().lens = MarloHost::LensModel();
    builder.clip().lens->focalLength = {1, {0, 4}, {1, 2}};
    builder.clip().lens->centreX.value = 0.4;
    builder.clip().lens->centreY.value = 0.1;
    builder.clip().lens->squeeze.value = 1.5;
    builder.addLayer("A", {100, 50, 200, 50, 100, 100, 200, 100});
    builder.layer().tracks = {{"right", {1, 2, 5}, {}}};
    for (int const frame : builder.layer().tracks[0].frames)
    {
        auto const h = ProjectBuilder::translation(10 * frame, -20 * frame);
        auto& all = builder.layer().tracks[0].homographies;
        all.insert(all.end(), h.begin(), h.end());
    }
    return builder;
}

}

TEST(LayerTransform, TrackedFramesAndFrameSizes)
{
    auto const project = shot().make();
    KORV_SelectionManager const& layers = *project->sm();
    KORV_Layer const& layer = *layers.topLayer();
    EXPECT_TRUE(layers.isLayerTrackedAtFrame(layer, at(5.5, 1))) << "within the frame";
    EXPECT_FALSE(layers.isLayerTrackedAtFrame(layer, at(3, 1)));
    EXPECT_FALSE(layers.isLayerTrackedAtFrame(layer, at(5, 0))) << "in the other view";
    EXPECT_FALSE(layers.isLayerTrackedAtFrame(layer, at(5, 7))) << "in no view at all";
    EXPECT_EQ(layers.layerFrameSize(layer, Anm::ProxyScale::Full), QSize(1000, 250));
    EXPECT_EQ(layers.layerFrameSize(layer, Anm::ProxyScale::Eighth), QSize(125, 32));
}

TEST(LayerTransform, FileFormatsAreToldByTheEndingOfNames)
{
    for (auto const& [suffix, format] :
         std::vector<std::pair<char const*, int>>{{".v1.DPX", 6}, {".jpeg", 5}, {".png", 0}, {".exr", -1}, {"", -1}})
    {
        ProjectBuilder builder = shot();
        builder.clip().footage = {MarloHost::FootageModel::Sequence, "/a.tga/b", "c.", suffix, 4, 1, {}};
        EXPECT_EQ(builder.make()->pGetParameterManager()->getClipInfo(1, false)->fileFormat(), format) << suffix;
    }
}

// The picture is four times as wide as high: a height of it is 250 pixels across, and 250 lines of a field.
TEST(LayerTransform, CamerasAreInPixelsOfAFieldWithYDown)
{
    auto const project = shot().make();
    Mtx_Camera const camera = project->pGetParameterManager()->getClip(1)->camera(at(2));
    EXPECT_NEAR(camera.focalX, 1.5 * 1.5 * 250, 1e-9);
    EXPECT_NEAR(camera.focalY, 1.5 * 250, 1e-9);
    EXPECT_NEAR(camera.x0, 500 + 0.4 * 250, 1e-9);
    EXPECT_NEAR(camera.y0, 125 - 0.1 * 250, 1e-9);
}

TEST(LayerTransform, IsTheMotionBetweenDirectionsWithYDown)
{
    auto const project = shot().make();
    KORV_SelectionManager const& layers = *project->sm();
    struct
    {
        Anm::Context context;
        ZN_TRACKING_OPTION option;
        int start;

        /// Motion in pixels, and focal lengths over that of the frame.
        double x, y, zoom, focal;
        bool standsIn;
    } const cases[] = {
        {at(2, 1), ZN_TRACKING_OPTION_BASIC, 2, 20, -40, 1, 1.5, false},
        {at(2, 1), ZN_TRACKING_OPTION_BASIC, 4, 20, -40, 2 / 1.5, 1.5, false},
        {at(3, 1), ZN_TRACKING_OPTION_ADJUSTED, 3, 20, -40, 1, 1.75, true},
        {at(2, 1), ZN_TRACKING_OPTION_STABILIZED, 2, 0, 0, 1, 1.5, false},
        {at(5, 1), ZN_TRACKING_OPTION_STABILIZED, 4, -0.0, 0, 1, 2, false},
        {at(1, 1), ZN_TRACKING_OPTION_STABILIZED, 5, 40, -80, 2 / 1.25, 1.25, false},
        {at(4, 0), ZN_TRACKING_OPTION_BASIC, 4, 0, 0, 1, 2, true},
    };
    for (auto const& one : cases)
    {
        bool standsIn = !one.standsIn;
        Mtx_Mat33 const m =
            layers.layerTransform(*layers.topLayer(), one.context, one.option, at(one.start), &standsIn);
        EXPECT_EQ(standsIn, one.standsIn);
        EXPECT_NEAR(m.xx / m.zz, one.zoom, 1e-12);
        EXPECT_NEAR(m.yy / m.zz, one.zoom, 1e-12);
        EXPECT_NEAR(m.xz / m.zz, one.x / (one.focal * 1.5 * 250), 1e-12);
        EXPECT_NEAR(m.yz / m.zz, -one.y / (one.focal * 250), 1e-12) << "down";
        EXPECT_NEAR(m.xy, 0, 1e-12);
        EXPECT_NEAR(m.zx, 0, 1e-12);
    }
}
