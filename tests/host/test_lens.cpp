// The lens of a clip: numbers worked out by hand, and that taking it away and
// putting it on are inverses.

#include "ProjectBuilder.h"

#include "Host/ExporterHelper.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Exception.h"
#include "marlohost/ClipLens.h"

#include <gtest/gtest.h>

using MarloHost::ClipLens;
using MarloHost::ClipModel;
using MarloHost::LensModel;

namespace
{

ClipModel clipWith(LensModel const& lens, int width = 2000, int height = 1000, double pixelAspect = 1)
{
    ProjectBuilder builder(100, width, height);
    builder.clip().pixelAspect = pixelAspect;
    builder.clip().lens = lens;
    return builder.clip();
}

LensModel strongLens()
{
    LensModel lens;
    lens.focalLength.value = 1.5;
    lens.centreX.value = 0.03;
    lens.centreY.value = -0.02;
    lens.radial[0].value = -0.12;
    lens.radial[1].value = 0.05;
    lens.radial[2].value = -0.004;
    lens.tangential[0].value = 0.003;
    lens.tangential[1].value = -0.002;
    lens.squeeze.value = 1.1;
    return lens;
}

TEST(Lens, FormulaInNumbers)
{
    LensModel lens;
    lens.focalLength.value = 2;
    lens.radial[0].value = 0.1;
    // x = 1500 is X = 0.5, q = 0.25; q (1 + 0.1 q^2) = 0.2515625; back: 1503.125.
    TXI::Pos2 const radial = ClipLens(clipWith(lens), 0).distort({1500, 500});
    EXPECT_NEAR(radial.x, 1503.125, 1e-9);
    EXPECT_NEAR(radial.y, 500, 1e-9);

    // With pixels twice as wide X is 1 and q 0.5: 0.5125, X 1.025, x = 1512.5.
    EXPECT_NEAR(ClipLens(clipWith(lens, 2000, 1000, 2), 0).distort({1500, 500}).x, 1512.5, 1e-9);

    // A centre at the point itself moves nothing; a squeeze of 2 halves q.
    lens.centreX.value = 0.5;
    EXPECT_NEAR(ClipLens(clipWith(lens), 0).distort({1500, 500}).x, 1500, 1e-9);
    lens.centreX.value = 0;
    lens.squeeze.value = 2;
    EXPECT_NEAR(ClipLens(clipWith(lens), 0).distort({1500, 500}).x, 1000 + 500 * (1 + 0.1 / 64), 1e-9);

    LensModel tangential;
    tangential.tangential[0].value = 0.01;
    tangential.tangential[1].value = 0.02;
    // q = (0.5, 0.25), r2 = 0.3125: dx = 0.0025 + 0.02 * 0.8125, dy = 0.01 * 0.4375 + 0.005.
    TXI::Pos2 const moved = ClipLens(clipWith(tangential), 0).distort({1500, 750});
    EXPECT_NEAR(moved.x, 1500 + 1000 * (0.0025 + 0.02 * 0.8125), 1e-9);
    EXPECT_NEAR(moved.y, 750 + 1000 * (0.01 * 0.4375 + 0.005), 1e-9);
}

TEST(Lens, KeysAreLinearAndHeld)
{
    LensModel lens;
    lens.radial[0] = {0, {10, 20}, {0.1, 0.3}};
    double const expected[][2] = {{0, 0.1}, {10, 0.1}, {15, 0.2}, {20, 0.3}, {99, 0.3}};
    for (auto const& [frame, k1] : expected)
    {
        EXPECT_NEAR(ClipLens(clipWith(lens), frame).distort({1500, 500}).x, 1000 + 500 * (1 + 0.25 * k1), 1e-9);
    }
}

TEST(Lens, UndistortIsTheInverseOverFrameAndOverscan)
{
    for (double const pixelAspect : {1.0, 2.0})
    {
        LensModel lens = strongLens();
        lens.focalLength.value *= pixelAspect;
        ClipModel const clip = clipWith(lens, 1920, 1080, pixelAspect);
        ClipLens const at(clip, 0);
        for (double y = -108; y <= 1188; y += 27)
        {
            for (double x = -192; x <= 2112; x += 48)
            {
                TXI::Pos2 const lensed = at.distort({x, y});
                auto const back = at.undistort(lensed);
                ASSERT_TRUE(back) << x << " " << y;
                EXPECT_NEAR(back->x, x, 1e-8);
                EXPECT_NEAR(back->y, y, 1e-8);
            }
        }
    }
}

TEST(Lens, PointsThatTheLensShowsNothingAtHaveNoInverse)
{
    LensModel lens;
    lens.radial[0].value = -0.3;
    // q (1 - 0.3 q^2) is largest, 0.703, at q = 1.054.
    ClipLens const at(clipWith(lens), 0);
    EXPECT_TRUE(at.undistort({1000 + 702, 500}));
    EXPECT_FALSE(at.undistort({1000 + 704, 500}));
}

TEST(Lens, UndistortedExportsGoThroughTheInverse)
{
    ProjectBuilder builder(2);
    builder.clip().lens = strongLens();
    std::array<double, 8> const straight{300, 200, 1500, 260, 320, 900, 1600, 940};
    ClipLens const lens(builder.clip(), 0);
    std::array<double, 8> lensed;
    for (std::size_t i = 0; i < 8; i += 2)
    {
        TXI::Pos2 const point = lens.distort({straight[i], straight[i + 1]});
        lensed[i] = point.x;
        lensed[i + 1] = point.y;
    }
    builder.addLayer("A", lensed);
    auto const project = builder.make();
    for (bool const undistort : {false, true})
    {
        Korvane::TrackingExporterHelper helper;
        Korvane::TrackingExporter::Options options;
        options.undistort = undistort;
        helper.initialiseWithPMAndRange(*project, 1, Anm::View::defaultView(), 0, Anm::Time::fromInt(0),
                                        Anm::Time::fromInt(1), false);
        helper.setClip(*project->parameterManager()->getClip(1));
        helper.updateSurfacePoints(*project, 1, Anm::Context::Explicit(project->currentFrame()), options, nullptr);
        std::array<double, 8> const& expected = undistort ? straight : lensed;
        for (std::size_t corner = 0; corner < 4; ++corner)
        {
            EXPECT_NEAR(helper.surfacePoints()[1][corner].x, expected[corner * 2], 1e-8);
            EXPECT_NEAR(helper.surfacePoints()[1][corner].y, expected[corner * 2 + 1], 1e-8);
        }
    }
}

TEST(Lens, FramesThatLeaveItHaveTheNearestOneThatDoesNot)
{
    ProjectBuilder builder(4, 2000, 1000);
    builder.clip().lens.emplace();
    builder.clip().lens->radial[0].value = -0.3;
    // Beyond x 1703 the lens shows nothing; frame 2 is the reference, and can't be it.
    builder.addLayer("A", {1200, 400, 1400, 400, 1200, 600, 1400, 600});
    builder.track([](int frame) { return ProjectBuilder::translation(frame == 2 ? 400 : 10 * frame, 0); });
    auto const project = builder.make();
    Korvane::TrackingExporterHelper helper;
    Korvane::TrackingExporter::Options options;
    options.undistort = options.invert = true;
    Anm::Context const reference(Anm::Time::fromInt(2), Anm::View::defaultView());
    helper.initialiseWithPMAndRange(*project, 1, reference.view(), 0, Anm::Time::fromInt(0), Anm::Time::fromInt(3),
                                    false);
    helper.setClip(*project->parameterManager()->getClip(1));
    helper.updateSurfacePoints(*project, 1, Anm::Context::Explicit(reference), options, nullptr);
    EXPECT_EQ(helper.failureMessages(),
              QStringList("Frame 2: the surface leaves what the lens shows, frame 1 stands in for it"));
    EXPECT_EQ(helper.surfacePoints()[1][3].x, 2000) << "the picture itself";
    EXPECT_EQ(helper.surfacePoints()[2][3].x, 2000);
    EXPECT_NE(helper.surfacePoints()[3][3].x, 2000);
}

TEST(Lens, FilesKeepItAndRefuseOneThatFolds)
{
    ProjectBuilder builder(100);
    builder.clip().lens = strongLens();
    builder.clip().lens->radial[1] = {0.05, {0, 50}, {0.05, 0.04}};
    QByteArray const text = MarloHost::writeProject(builder.model);
    EXPECT_EQ(MarloHost::writeProject(MarloHost::readProject(text, "lens.json")), text);
    MarloHost::KeyedNumber const keyed = MarloHost::readProject(text, "lens.json").clips[0].lens->radial[1];
    EXPECT_EQ(keyed.frames, (std::vector<int>{0, 50}));
    EXPECT_EQ(keyed.values, (std::vector<double>{0.05, 0.04}));

    builder.clip().lens->radial[0].value = -2;
    EXPECT_THROW(MarloHost::readProject(MarloHost::writeProject(builder.model), "fold.json"), KORV_BadFile);
}

}
