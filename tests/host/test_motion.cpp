// The motion of a layer as exporters get it from the helper, against numbers worked
// out by hand.

#include "ProjectBuilder.h"

#include "Host/ExporterHelper.h"
#include "Host/KORV_Clip.h"

#include <Eigen/Dense>
#include <gtest/gtest.h>

namespace
{

// The homography that takes four points to four others, solved as a linear system.
class ProjectiveMap
{
public:
    ProjectiveMap(TXI::Pos2 const* from, TXI::Pos2 const* to)
    {
        Eigen::Matrix<double, 8, 8> a;
        Eigen::Matrix<double, 8, 1> b;
        for (int i = 0; i < 4; ++i)
        {
            auto const [x, y] = from[i];
            auto const [u, v] = to[i];
            a.row(2 * i) << x, y, 1, 0, 0, 0, -u * x, -u * y;
            a.row(2 * i + 1) << 0, 0, 0, x, y, 1, -v * x, -v * y;
            b(2 * i) = u;
            b(2 * i + 1) = v;
        }
        Eigen::Matrix<double, 8, 1> const h = a.fullPivLu().solve(b);
        m_matrix << h(0), h(1), h(2), h(3), h(4), h(5), h(6), h(7), 1;
    }

    TXI::Pos2 apply(TXI::Pos2 const& p) const
    {
        Eigen::Vector3d const q = m_matrix * Eigen::Vector3d(p.x, p.y, 1);
        return {q.x() / q.z(), q.y() / q.z()};
    }

private:
    Eigen::Matrix3d m_matrix;
};

using Helper = Korvane::TrackingExporterHelper;
using Options = Korvane::TrackingExporter::Options;

constexpr int UNLIMITED = 2147483647;

struct Exported
{
    boost::shared_ptr<KORV_ProjectManager> project;
    Helper helper;
};

Exported run(ProjectBuilder const& builder, Options const& options = {}, int reference = 0,
             Anm::View const& view = Anm::View::defaultView())
{
    Exported exported{builder.make(), {}};
    unsigned int const id = exported.project->toolManager()->currentLayerID();
    exported.helper.initialiseWithPMAndRange(*exported.project, id, view, UNLIMITED, Anm::Time::fromInt(UNLIMITED),
                                             Anm::Time::fromInt(-UNLIMITED), false);
    exported.helper.setClip(*exported.project->parameterManager()->getClip(1));
    Anm::Context::Explicit const context(Anm::Context(Anm::Time::fromInt(reference), view));
    exported.helper.updateSurfacePoints(*exported.project, id, context, options, nullptr);
    exported.helper.buildTransformDataFromSurfaceMotion(false, true, static_cast<unsigned int>(reference));
    return exported;
}

void expectPoint(Helper const& helper, int row, int corner, double x, double y)
{
    TXI::Pos2 const point = helper.surfacePoints()[row][corner];
    EXPECT_NEAR(point.x, x, 1e-9) << "row " << row << " corner " << corner;
    EXPECT_NEAR(point.y, y, 1e-9) << "row " << row << " corner " << corner;
}

Options withOption(ZN_TRACKING_OPTION option, bool invert = false)
{
    Options options;
    options.trackingOption = option;
    options.invert = invert;
    return options;
}

// Corners at x 100/200, y 300/400, moved by (10, -20) per frame.
ProjectBuilder slider(int frames = 3)
{
    ProjectBuilder builder(frames);
    builder.addLayer("A", {100, 300, 200, 300, 100, 400, 200, 400});
    builder.track([](int frame) { return ProjectBuilder::translation(10 * frame, -20 * frame); });
    return builder;
}

TEST(Motion, CornersAndCentreGoThroughTheHomography)
{
    ProjectBuilder builder(1);
    builder.addLayer("A", {0, 0, 100, 0, 0, 100, 100, 100});
    // w is 1 + x / 100: the right edge is twice as far away.
    builder.track([](int) { return ProjectBuilder::Matrix{1, 0, 0, 0, 1, 0, 0.01, 0, 1}; });
    Exported const exported = run(builder);
    expectPoint(exported.helper, 0, 0, 0, 0);
    expectPoint(exported.helper, 0, 1, 50, 0);
    expectPoint(exported.helper, 0, 2, 0, 100);
    expectPoint(exported.helper, 0, 3, 50, 50);
    // The crossing of the diagonals, not the mean of the corners (25, 37.5).
    expectPoint(exported.helper, 0, 4, 100.0 / 3, 100.0 / 3);
}

TEST(Motion, AdjustOffsetsAreLinearBetweenKeysAndStayOutside)
{
    ProjectBuilder builder = slider(6);
    builder.layer().adjust = {{1, {0, 0, 0, 0, 0, 0, 8, 4}}, {3, {0, 0, 0, 0, 0, 0, 0, 0}}};
    Exported const exported = run(builder, withOption(ZN_TRACKING_OPTION_ADJUSTED));
    expectPoint(exported.helper, 0, 3, 200 + 8, 400 + 4);
    expectPoint(exported.helper, 2, 3, 220 + 4, 360 + 2);
    expectPoint(exported.helper, 5, 3, 250, 300);
    expectPoint(exported.helper, 2, 0, 120, 260);

    Exported const basic = run(builder, withOption(ZN_TRACKING_OPTION_BASIC));
    expectPoint(basic.helper, 2, 3, 220, 360);
}

TEST(Motion, OffsetSticksToThePlane)
{
    ProjectBuilder builder = slider();
    builder.layer().adjust = {{0, {1, 2, 0, 0, 0, 0, 0, 0}}, {2, {50, 50, 50, 50, 50, 50, 50, 50}}};
    builder.track(
        [](int frame)
        { return frame < 2 ? ProjectBuilder::identity() : ProjectBuilder::Matrix{2, 0, 0, 0, 2, 0, 0, 0, 1}; });
    Exported const exported = run(builder, withOption(ZN_TRACKING_OPTION_OFFSET));
    expectPoint(exported.helper, 2, 0, 2 * 101, 2 * 302);
    expectPoint(exported.helper, 2, 3, 400, 800);
}

TEST(Motion, InvertedAndStabilizedMoveThePicture)
{
    struct Case
    {
        Options options;
        double x;
        double y;
    };
    // From reference frame 1 to frame 2 the surface moves by (10, -20).
    Case const cases[] = {
        {withOption(ZN_TRACKING_OPTION_BASIC, true), -10, 20},
        {withOption(ZN_TRACKING_OPTION_STABILIZED), -10, 20},
        {withOption(ZN_TRACKING_OPTION_STABILIZED, true), 10, -20},
    };
    for (Case const& wanted : cases)
    {
        Exported const exported = run(slider(), wanted.options, 1);
        expectPoint(exported.helper, 1, 3, 1920, 1080);
        expectPoint(exported.helper, 2, 0, wanted.x, wanted.y);
        expectPoint(exported.helper, 2, 3, 1920 + wanted.x, 1080 + wanted.y);
        expectPoint(exported.helper, 2, 4, 960 + wanted.x, 540 + wanted.y);
    }
}

TEST(Motion, InverseAfterForwardIsTheIdentity)
{
    ProjectBuilder builder(2);
    builder.addLayer("A");
    builder.track(
        [](int frame)
        {
            return frame == 0 ? ProjectBuilder::identity()
                              : ProjectBuilder::Matrix{0.9, 0.1, 12, -0.2, 1.1, 30, 1e-5, -2e-5, 1};
        });
    builder.layer().adjust = {{0, {0, 0, 0, 0, 0, 0, 0, 0}}, {1, {3, 1, -2, 5, 4, 4, 0, -6}}};
    Exported const forward = run(builder, withOption(ZN_TRACKING_OPTION_ADJUSTED));
    Exported const inverse = run(builder, withOption(ZN_TRACKING_OPTION_ADJUSTED, true));
    // What takes the picture's corners to where the inverse motion shows them takes
    // the surface of frame 1 back to where it was at frame 0.
    auto const shown = inverse.helper.surfacePoints();
    auto const surface = forward.helper.surfacePoints();
    ProjectiveMap const map(shown[0], shown[1]);
    for (int corner = 0; corner < 5; ++corner)
    {
        TXI::Pos2 const back = map.apply(surface[1][corner]);
        EXPECT_NEAR(back.x, surface[0][corner].x, 1e-8);
        EXPECT_NEAR(back.y, surface[0][corner].y, 1e-8);
    }
}

TEST(Motion, NothingIsSolvedThatIsKnown)
{
    ProjectBuilder builder(6);
    builder.addLayer("A", {610.1, 300.7, 903, 311, 590, 700, 910, 690.5});
    builder.track([](int frame)
                  { return ProjectBuilder::Matrix{1, 0.1, 7.3 * frame, -0.1, 1.01, 0, 1.7e-5 * frame, 0, 1}; });
    builder.layer().adjust = {{0, {}}, {3, {}}, {5, {1, 2, 3, 4, 5, 6, 7, 8}}};
    auto const at = [&](Options const& options, int frame, int corner)
    {
        TXI::Pos2 const point = run(builder, options, 5).helper.surfacePoints()[frame][corner];
        return std::pair(point.x, point.y);
    };
    std::pair<double, double> const picture[] = {{0, 0}, {1920, 0}, {0, 1080}, {1920, 1080}, {960, 540}};
    for (int corner = 0; corner < 5; ++corner)
    {
        // Without corrections the track is taken as it is.
        for (ZN_TRACKING_OPTION const option : {ZN_TRACKING_OPTION_ADJUSTED, ZN_TRACKING_OPTION_OFFSET})
        {
            EXPECT_EQ(at(withOption(option), 2, corner), at(withOption(ZN_TRACKING_OPTION_BASIC), 2, corner));
        }
        // In the reference frame footage stays, to the last bit.
        for (Options const& options :
             {withOption(ZN_TRACKING_OPTION_ADJUSTED, true), withOption(ZN_TRACKING_OPTION_OFFSET, true),
              withOption(ZN_TRACKING_OPTION_STABILIZED), withOption(ZN_TRACKING_OPTION_STABILIZED, true)})
        {
            EXPECT_EQ(at(options, 5, corner), picture[corner]);
            EXPECT_NE(at(options, 4, corner), picture[corner]);
        }
    }
}

TEST(Motion, FramesWithoutDataTakeTheNearestTrackedFrameAndSaySo)
{
    ProjectBuilder builder = slider(7);
    builder.clip().frameOffset = 1001;
    MarloHost::TrackModel& track = builder.layer().tracks.front();
    track.frames = {1, 4};
    track.homographies = {1, 0, 10, 0, 1, 0, 0, 0, 1, 1, 0, 40, 0, 1, 0, 0, 0, 1};
    Exported const exported = run(builder);
    double const expected[] = {110, 110, 110, 140, 140, 140, 140};
    for (int row = 0; row < 7; ++row)
    {
        expectPoint(exported.helper, row, 0, expected[row], 300);
    }
    EXPECT_EQ(exported.helper.failureMessages(),
              QStringList({"Frame 1001: no tracking data, frame 1002 stands in for it",
                           "Frame 1003: no tracking data, frame 1002 stands in for it",
                           "Frame 1004: no tracking data, frame 1005 stands in for it",
                           "Frame 1006: no tracking data, frame 1005 stands in for it",
                           "Frame 1007: no tracking data, frame 1005 stands in for it"}));
}

TEST(Motion, ACornerPastInfinityIsAFailureOfItsFrame)
{
    // At frame 1 the line x = 150 goes to infinity, between the corners.
    auto const homography = [](int frame)
    { return frame == 1 ? ProjectBuilder::Matrix{1, 0, 0, 0, 1, 0, -1.0 / 150, 0, 1} : ProjectBuilder::identity(); };
    for (bool const adjusted : {false, true})
    {
        ProjectBuilder builder = slider();
        builder.track(homography);
        builder.layer().adjust = {{0, {1, 0, 1, 0, 1, 0, 1, 0}}};
        Exported const exported =
            run(builder, withOption(adjusted ? ZN_TRACKING_OPTION_ADJUSTED : ZN_TRACKING_OPTION_BASIC));
        expectPoint(exported.helper, 1, 0, adjusted ? 101 : 100, 300);
        EXPECT_EQ(exported.helper.failureMessages(),
                  QStringList("Frame 1: the surface goes past infinity, frame 0 stands in for it"));
    }
}

TEST(Motion, ALayerWithoutTrackHasNothingToExport)
{
    ProjectBuilder builder = slider();
    builder.layer().tracks.clear();
    Exported const exported = run(builder);
    EXPECT_EQ(exported.helper.firstFrame().value(), -1);
    EXPECT_EQ(exported.helper.numFrames(), 0);
    EXPECT_TRUE(exported.helper.transformSamples().empty());
    EXPECT_EQ(exported.helper.failureMessages(), QStringList("Layer \"A\" has no tracking data"));
}

TEST(Motion, EachViewHasItsOwnTrack)
{
    ProjectBuilder builder = slider();
    builder.model.views = QStringList{"left", "right"};
    builder.track([](int) { return ProjectBuilder::translation(500, 0); }, "right");
    expectPoint(run(builder).helper, 2, 0, 120, 260);
    expectPoint(run(builder, {}, 0, Anm::View(1)).helper, 2, 0, 600, 300);
    EXPECT_EQ(run(builder, {}, 0, Anm::View(7)).helper.numFrames(), 0);
}

TEST(Motion, RangesAreCutToTheLayerAndBothWordsForTheWholeAreTaken)
{
    ProjectBuilder builder = slider(20);
    builder.range(5, 9).track([](int) { return ProjectBuilder::identity(); });
    auto const project = builder.make();
    struct Case
    {
        int from;
        int to;
        int first;
        int count;
    };
    Case const cases[] = {{UNLIMITED, -UNLIMITED, 5, 5},
                          {-UNLIMITED, UNLIMITED, 5, 5},
                          {0, 6, 5, 2},
                          {7, 100, 7, 3},
                          {9, 9, 9, 1},
                          {10, 19, -1, 0},
                          {8, 6, -1, 0}};
    for (Case const& wanted : cases)
    {
        Helper helper;
        Anm::Time const from = Anm::Time::fromInt(wanted.from);
        Anm::Time const to = Anm::Time::fromInt(wanted.to);
        helper.initialiseWithPMAndRange(*project, 1, Anm::View::defaultView(), UNLIMITED, from, to, false);
        EXPECT_EQ(helper.firstFrame().value(), wanted.first) << wanted.from << " to " << wanted.to;
        EXPECT_EQ(helper.numFrames(), wanted.count) << wanted.from << " to " << wanted.to;
        EXPECT_EQ(Helper::layerIsWithinProject(*project, 1, from, to, false), wanted.count > 0);
    }
    EXPECT_FALSE(Helper::layerIsWithinProject(*project, 2, Anm::Time::fromInt(0), Anm::Time::fromInt(9), false));

    // The project has the frames of its first clip; this layer was tracked on a longer one.
    builder.model.clips.push_back(builder.clip());
    builder.model.clips.back().name = "longer";
    builder.model.clips.back().frameCount = 40;
    builder.layer().clip = "longer";
    for (int const first : {19, 20})
    {
        builder.range(first, 30);
        EXPECT_EQ(Helper::layerIsWithinProject(*builder.make(), 1, Anm::Time::fromInt(-UNLIMITED),
                                               Anm::Time::fromInt(UNLIMITED), false),
                  first == 19);
    }
}

TEST(Motion, LayersAreNarrowedByTheWordsOfExporters)
{
    ProjectBuilder builder(1);
    for (int i = 0; i < 4; ++i)
    {
        builder.addLayer(QString::number(i));
        builder.layer().hidden = i % 2 == 1;
        builder.layer().selected = i >= 2;
    }
    auto const project = builder.make();
    for (auto const& [words, names] : {std::pair(0, "0123"), {8, "23"}, {128, "02"}, {8 + 128, "2"}})
    {
        QString found;
        for (auto const& layer : project->sm()->layers(QFlags<Korvane::ItemsQuery>(QFlag(words))))
        {
            found += layer->name();
        }
        EXPECT_EQ(found, names) << words;
    }
}

TEST(Motion, SimilarityIsFittedInSquarePixelsFromTheReferenceFrame)
{
    // In square pixels: 30 degrees counter-clockwise and a scale of 1.5 per frame.
    constexpr double DEGREE = 3.141592653589793 / 180;
    ProjectBuilder builder(20);
    builder.clip().pixelAspect = 2;
    builder.addLayer("A", {800, 400, 900, 400, 800, 600, 900, 600});
    builder.track(
        [&](int frame)
        {
            ProjectBuilder::Matrix h = ProjectBuilder::similarity(1700, 500, 30 * DEGREE * frame, std::pow(1.5, frame),
                                                                  6.0 * frame, 7.0 * frame);
            h[1] /= 2;
            h[2] /= 2;
            h[3] *= 2;
            return h;
        });
    Exported const exported = run(builder, {}, 4);
    for (auto const& [frame, sample] : exported.helper.transformSamples())
    {
        EXPECT_NEAR(sample.x, 850 + 3.0 * frame, 1e-8);
        EXPECT_NEAR(sample.y, 1080 - (500 + 7.0 * frame), 1e-8);
        EXPECT_NEAR(sample.scale / std::pow(1.5, frame - 4), 1, 1e-12);
        // Beyond half a turn in both directions, without a jump.
        EXPECT_NEAR(sample.rotation, 30 * DEGREE * (frame - 4), 1e-12);
    }
    EXPECT_EQ(exported.helper.transformSamples().size(), 20u);
}

TEST(Motion, RelativePinAndTransformTogetherGiveTheCornersBack)
{
    ProjectBuilder builder(5, 720, 576);
    builder.clip().pixelAspect = 1.4568;
    builder.addLayer("A", {20, 30, 180, 22, 35, 160, 170, 180});
    builder.track(
        [](int frame)
        {
            ProjectBuilder::Matrix h =
                ProjectBuilder::similarity(100, 100, 0.4 * frame, 1 + 0.1 * frame, 40 * frame, 9);
            h[6] = 3e-4 * frame;
            return h;
        });
    Exported absolute = run(builder, {}, 2);
    Helper relative = absolute.helper;
    relative.makeCornerPinDataRelative();
    double const par = builder.clip().pixelAspect;
    for (auto const& [frame, sample] : absolute.helper.transformSamples())
    {
        for (int corner = 0; corner < 4; ++corner)
        {
            // A layer of the clip's size, anchored in its middle, y down.
            TXI::Pos2 const pin = relative.surfacePoints()[frame][corner];
            double const dx = (pin.x - 360) * par;
            double const dy = 288 - pin.y;
            double const turn = -sample.rotation;
            double const x = sample.x + sample.scale * (std::cos(turn) * dx - std::sin(turn) * dy) / par;
            double const y = sample.y + sample.scale * (std::sin(turn) * dx + std::cos(turn) * dy);
            TXI::Pos2 const corners = absolute.helper.surfacePoints()[frame][corner];
            EXPECT_NEAR(x, corners.x, 1e-9);
            EXPECT_NEAR(576 - y, corners.y, 1e-9);
        }
    }
}

TEST(Motion, CopiesOfAHelperShareNothing)
{
    Exported const exported = run(slider());
    Helper copy = exported.helper;
    copy.makeCornerPinDataRelative();
    EXPECT_NE(copy.surfacePoints()[1][0].x, exported.helper.surfacePoints()[1][0].x);
    copy = exported.helper;
    EXPECT_EQ(copy.surfacePoints()[1][0].x, exported.helper.surfacePoints()[1][0].x);
    EXPECT_NE(copy.surfacePoints().get(), exported.helper.surfacePoints().get());
}

TEST(Motion, InterlacedClipsCountFieldsAndFieldLines)
{
    ProjectBuilder builder = slider(4);
    builder.clip().interlaced = true;
    Exported const exported = run(builder);
    EXPECT_EQ(exported.helper.heightScale(), 2.0F);
    EXPECT_EQ(exported.helper.verticalScale(), 2.0F);
    EXPECT_EQ(exported.helper.frameScale(), 0.5F);
    EXPECT_EQ(exported.helper.frameStep(), 0.5F);
    // The field has 540 lines; the centre of the surface is at line 350.
    EXPECT_EQ(exported.helper.transformSamples().at(0).y, 540 - 350);
    Helper fullFrame = exported.helper;
    fullFrame.buildTransformDataFromSurfaceMotion(true, true, 0);
    EXPECT_EQ(fullFrame.transformSamples().at(0).y, 2 * (540 - 350));
    fullFrame.buildTransformDataFromSurfaceMotion(false, false, 0);
    EXPECT_EQ(fullFrame.transformSamples().at(0).y, 350);
}

}
