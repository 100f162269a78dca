// Edge cases of the corner pin and of the matrices in XML, and the matrices before they are printed.

#include "Host/ExporterHelper.h"
#include "Host/KORV_Clip.h"
#include "Host/KORV_Exception.h"
#include "Host/ZN_ClipInfo.h"
#include "ProjectBuilder.h"
#include "Writing/Setup.h"
#include "XML/XmlCornerPinExporter.h"
#include "XML/XmlMatricesExporter.h"
#include "XML/parts/NormalisedMotion.h"

#include <gtest/gtest.h>

using namespace Export;

namespace
{

using Options = Korvane::TrackingExporter::Options;

Anm::Context at(int frame)
{
    return Anm::Context(Anm::Time::fromInt(frame), Anm::View::defaultView());
}

Korvane::ExportedFiles run(Korvane::TrackingExporter const& exporter, ProjectBuilder const& builder,
                           unsigned int layer = 1)
{
    return exporter.exportTracking(*builder.make(), "a", layer, at(0), Options());
}

/// The values of an element, in order.
QStringList values(Korvane::ExportedFiles const& files, QString const& element)
{
    QStringList found;
    QStringList const parts = QString(files.files.value("a")).split("<" + element + ">\n");
    for (QString const& part : parts.mid(1))
    {
        found += part.left(part.indexOf('\n')).trimmed();
    }
    return found;
}

/// Six frames of perspective motion over a clip with a zoom, an off-centre lens and wide pixels.
ProjectBuilder zoomingShot(bool interlaced)
{
    ProjectBuilder builder(6, 1440, 1080);
    builder.clip().interlaced = interlaced;
    builder.clip().pixelAspect = 1.25;
    builder.clip().lens = MarloHost::LensModel();
    builder.clip().lens->focalLength = {1, {0, 5}, {0.8, 2.5}};
    builder.clip().lens->centreX.value = 0.07;
    builder.clip().lens->centreY = {0, {0, 5}, {-0.04, 0.03}};
    builder.clip().lens->squeeze.value = 1.1;
    builder.addLayer("A", {400, 150, 900, 170, 380, 500, 910, 490});
    builder.layer().referenceFrame = 1;
    builder.track(
        [](int frame)
        {
            ProjectBuilder::Matrix h =
                ProjectBuilder::similarity(600, 300, 0.05 * (frame - 1), 1 + 0.03 * (frame - 1), 9.0 * frame, 4);
            h[6] = 4e-5 * (frame - 1);
            h[7] = -7e-5 * (frame - 1);
            return h;
        });
    builder.layer().adjust = {{1, {1, -2, 0, 3, -4, 0, 2, 2}}, {4, {0, 5, 0, 0, 6, 0, -3, 0}}};
    return builder;
}

}

// The helper's points are the surface's corners on the footage, or the picture's where the motion goes onto it.
TEST(XmlMatrices, CarryTheHelpersPointsToItsPointsBeforeTheyArePrinted)
{
    for (bool const interlaced : {false, true})
    {
        ProjectBuilder const builder = zoomingShot(interlaced);
        auto const project = builder.make();
        KORV_Layer const& layer = *project->sm()->layerFromNumericID(1, false);
        KORV_Clip const& clip = *project->pGetParameterManager()->getClip(1);
        double const width = clip.info().width();
        double const height = clip.info().height();
        for (int choice = 0; choice < 8; ++choice)
        {
            Options options;
            options.trackingOption = static_cast<ZN_TRACKING_OPTION>(choice / 2);
            options.invert = choice % 2 == 1;
            Korvane::TrackingExporterHelper helper;
            setUpTrackingHelper(helper, *project, 1, Anm::View::defaultView(), options.framesToExport);
            helper.updateSurfacePoints(*project, 1, Anm::Context::Explicit(at(4)), options, nullptr);
            bool const isPicture = options.invert || options.trackingOption == ZN_TRACKING_OPTION_STABILIZED;
            std::array<double, 8> const from = isPicture
                                                   ? std::array<double, 8>{0, 0, width, 0, 0, height, width, height}
                                                   : builder.model.layers[0].corners;
            NormalisedMotion const motion(*project->sm(), layer, clip, at(4), options);
            for (int frame = 0; frame < 6; ++frame)
            {
                Mtx_Mat33 const m = motion.at(frame).matrix;
                for (std::size_t corner = 0; corner < 4; ++corner)
                {
                    double const x = from[2 * corner] / width;
                    double const y = from[2 * corner + 1] / height;
                    double const w = m.zx * x + m.zy * y + m.zz;
                    TXI::Pos2 const to = helper.surfacePoints()[frame][corner];
                    EXPECT_NEAR((m.xx * x + m.xy * y + m.xz) / w * width, to.x, 1e-6) << choice << ' ' << frame;
                    EXPECT_NEAR((m.yx * x + m.yy * y + m.yz) / w * height, to.y, 1e-6) << choice << ' ' << frame;
                }
            }
        }
    }
}

TEST(XmlMatrices, SpanTheTrackedFramesAndTellOfGaps)
{
    ProjectBuilder builder(9);
    builder.clip().frameOffset = 10;
    builder.clip().footage = {MarloHost::FootageModel::Sequence, "/plates", "a.", ".dpx", 4, 100, {}};
    builder.addLayer("A & B");
    MarloHost::TrackModel& track = builder.layer().tracks[0];
    track.frames = {2, 4, 5};
    track.homographies = {1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0, 96, 0, 1, 0, 0, 0, 1, 1, std::nan(""), 0, 0, 1, 0, 0, 0, 1};
    auto const files = run(KORV_XmlMatricesExporter(), builder);
    EXPECT_EQ(values(files, "FrameNumber"), QStringList({"12", "13", "14"}));
    EXPECT_EQ(values(files, "FileNumber"), QStringList({"102", "103", "104"}));
    EXPECT_EQ(values(files, "xz"), QStringList({"0", "0", "0.05"}));
    EXPECT_EQ(values(files, "Name"), QStringList("A & B")) << "as it is";
    EXPECT_EQ(files.failedCount, 1) << "the frame that isn't finite";
    EXPECT_EQ(files.messages, QStringList("a: Frame 13: no usable tracking data, the nearest frame stands in for it"));
}

TEST(XmlMatrices, AreRefusedWithoutALayerOrATrack)
{
    ProjectBuilder builder(2);
    builder.addLayer("A").layer().tracks.clear();
    struct
    {
        unsigned int layer;
        char const* message;
    } const cases[] = {{9, "Cannot find layer"}, {1, "No tracking data for selected layer within In/Out points"}};
    for (auto const& one : cases)
    {
        try
        {
            run(KORV_XmlMatricesExporter(), builder, one.layer);
            ADD_FAILURE() << one.message;
        }
        catch (KORV_OperationFailed const& error)
        {
            EXPECT_EQ(error.message(), one.message);
        }
    }
}

TEST(XmlCornerPin, CountsFieldsInHalvesAndLeavesFramesOut)
{
    ProjectBuilder builder(5);
    builder.clip().interlaced = true;
    builder.clip().frameOffset = 10;
    builder.clip().footage = {MarloHost::FootageModel::Sequence, "/plates", "a.", ".dpx", 4, 7, {}};
    builder.addLayer("A", {192, 54, 960, 54, 192, 270, 960, 270}).range(1, 4);
    builder.track([](int frame) { return ProjectBuilder::translation(frame == 2 ? std::nan("") : 19.2 * frame, 0); });
    auto const files = run(KORV_XmlCornerPinExporter(), builder);
    EXPECT_EQ(values(files, "FrameNumber"), QStringList({"0.5", "1.5", "2"})) << "without the clip's offset";
    EXPECT_EQ(values(files, "FileNumber"), QStringList({"7", "8", "9"}));
    EXPECT_EQ(values(files, "bottomleftx"), QStringList({"0.11", "0.13", "0.14"}));
    EXPECT_EQ(values(files, "toprighty"), QStringList({"0.5", "0.5", "0.5"})) << "of a field's height";
    EXPECT_EQ(files.failedCount, 1);
}
