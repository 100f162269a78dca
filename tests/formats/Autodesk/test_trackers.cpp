// Flame's point trackers and stabilizers.

#include "Autodesk/KORV_IFFFSEPointsExporter.h"
#include "Autodesk/KORV_IFFFSEStabilizerExporter.h"
#include "Host/KORV_Exception.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Export;

namespace
{

Korvane::ExportedFiles run(Korvane::TrackingExporter const& exporter, ProjectBuilder const& builder, int reference = 0)
{
    auto const project = builder.make();
    Anm::Context const start(Anm::Time::fromInt(reference), Anm::View::defaultView());
    return exporter.exportTracking(*project, "/a/b.text", project->toolManager()->currentLayerID(), start, {});
}

/// Half a pixel to the right and a quarter down in each of three frames; frame `gap` is lost.
ProjectBuilder slider(int gap = -1)
{
    ProjectBuilder builder(3, 640, 480);
    builder.addLayer("A", {100, 50, 200, 50, 100, 100, 200, 100});
    builder.track(
        [gap](int frame)
        {
            double const lost = frame == gap ? std::numeric_limits<double>::quiet_NaN() : 0;
            return ProjectBuilder::translation(0.5 * frame + lost, -0.25 * frame);
        });
    return builder;
}

TEST(FlamePoints, StandInColumnsUnderTheNamesOfTheirCorners)
{
    struct
    {
        char const* old;
        char const* since2014;
        char const* line;
    } const cases[] = {
        {"1", "0_1", "  3.00 :    101.00,     99.50\n"},
        {"2", "1_1", "  3.00 :    201.00,     99.50\n"},
        {"3", "0_0", "  3.00 :    101.00,     49.50\n"},
        {"4", "1_0", "  3.00 :    201.00,     49.50\n"},
    };
    auto const old = run(KORV_IFFFSEPointsExporter(), slider()).files;
    auto const since2014 = run(KORV_IFFFSEPointsExporterFlame2014(), slider()).files;
    for (auto const& one : cases)
    {
        // ".text" has as many characters as ".ascii" but one.
        EXPECT_TRUE(old[QString("/a/_Tracker%1.ascii").arg(one.old)].endsWith(one.line)) << one.old;
        EXPECT_TRUE(since2014[QString("/a/_Tracker%1.ascii").arg(one.since2014)].endsWith(one.line)) << one.old;
    }
    EXPECT_EQ(old["/a/_Centre.ascii"],
              "  1.00 :    150.00,     75.00\n  2.00 :    150.50,     74.75\n  3.00 :    151.00,     74.50\n");
}

TEST(FlamePoints, FieldsAreHalfFramesInLinesOfTheFullFrame)
{
    ProjectBuilder builder = slider(1);
    builder.clip().interlaced = true;
    builder.clip().frameOffset = 20'000;
    Korvane::ExportedFiles const result = run(KORV_IFFFSEPointsExporter(), builder);
    EXPECT_EQ(result.files["/a/_Tracker3.ascii"], "10000.00 :    100.00,    100.00\n10001.00 :    101.00,     99.00\n");
    EXPECT_EQ(result.failedCount, 5);
}

TEST(FlameStabilizer, ShiftsCountFromTheNearestReferenceThatThereIs)
{
    struct
    {
        int reference;
        int gap;
        char const* frame;
        char const* keys;
    } const cases[] = {
        {1, -1, "2", "\t\tFrame 1\n\t\tValue 0.5\n\t\tRightSlope -0.5\n"},
        {99, -1, "3", "\t\tFrame 1\n\t\tValue 1\n\t\tRightSlope -0.5\n"},
        {-5, 0, "2", "\tSize 2\n\tKeyVersion 1\n\tKey 0\n\t\tFrame 2\n\t\tValue 0\n\t\tRightSlope -0.5\n"},
        {0, 1, "1", "\t\tValue -1\n\t\tLeftSlope -0.5\n"},
    };
    for (auto const& one : cases)
    {
        Korvane::ExportedFiles const result = run(KORV_IFFFSEStabilizerExporter(), slider(one.gap), one.reference);
        QByteArray const text = result.files["/a/b.text"];
        EXPECT_TRUE(text.contains("\nAnimRefFrame " + QByteArray(one.frame) + "\n")) << one.reference;
        EXPECT_TRUE(text.contains(one.keys)) << text.mid(text.indexOf("shift"), 400).constData();
        EXPECT_EQ(result.failedCount, one.gap < 0 ? 0 : 4);
    }
}

TEST(FlameTrackers, ALayerThatIsNotThere)
{
    EXPECT_THROW(run(KORV_IFFFSEPointsExporter(), ProjectBuilder()), KORV_BadArgument);
    EXPECT_THROW(run(KORV_IFFFSEStabilizerExporter(), ProjectBuilder()), KORV_BadArgument);
}

}
