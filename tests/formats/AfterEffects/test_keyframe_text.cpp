// The keyframe text: views, plug-in processes, and what can't be written.

#include "AfterEffects/AECornerPinExporters.h"
#include "AfterEffects/AEExportBuilder.h"
#include "AfterEffects/AETransformExporter.h"
#include "Host/KORV_Exception.h"
#include "ProjectBuilder.h"
#include "marlohost/Services.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace Export;

namespace
{

Korvane::ExportedFiles run(Korvane::TrackingExporter const& exporter, ProjectBuilder const& builder, int reference = 0,
                           Anm::View const& view = Anm::View::defaultView())
{
    auto const project = builder.make();
    Anm::Context const context(Anm::Time::fromInt(reference), view);
    return exporter.exportTracking(*project, "out.txt", project->toolManager()->currentLayerID(), context, {});
}

QString text(Korvane::TrackingExporter const& exporter, ProjectBuilder const& builder,
             Anm::View const& view = Anm::View::defaultView())
{
    return QString::fromUtf8(run(exporter, builder, 0, view).files.value("out.txt"));
}

// Rows of the block that starts with `title`.
QStringList rows(QString const& document, QString const& title)
{
    QString const start = "\n" + title + "\n";
    int const at = document.indexOf(start);
    if (at < 0)
    {
        return {"no block " + title};
    }
    QString const block = document.mid(at + start.size());
    return block.left(block.indexOf("\n\n")).split('\n').mid(1);
}

TEST(KeyframeBuilder, ValuesThatNoProgramReadsDropTheirRowOnce)
{
    double const infinity = std::numeric_limits<double>::infinity();
    AEExportBuilder builder(AEExportBuilder::Scratch);
    builder.addValue(0, std::nan(""));
    builder.addValue(0, infinity);
    builder.addValue(0, std::numeric_limits<double>::denorm_min());
    builder.addValues(0, {1, -infinity, std::nan("")});
    builder.addValue(1e6F, 0.0);
    builder.addValue(1, -0.0);
    EXPECT_EQ(builder.getErrorCount(), 4u);
    EXPECT_EQ(builder.getText(), "\t1e+06\t0\n\t1\t0\n");
}

ProjectBuilder turning()
{
    ProjectBuilder builder(3);
    builder.addLayer("A");
    builder.track(
        [](int frame)
        { return ProjectBuilder::similarity(960, 540, -2.0 * frame, 1 + 0.25 * frame, 3 * frame, -4 * frame); });
    return builder;
}

TEST(KeyframeText, EveryFormatFollowsTheViewItIsAskedFor)
{
    auto const away = [](int frame) { return ProjectBuilder::translation(100 * frame, 0); };
    ProjectBuilder stereo = turning();
    stereo.model.views = QStringList{"left", "right"};
    stereo.track(away, "right");
    ProjectBuilder mono = turning();
    mono.track(away);
    std::shared_ptr<Korvane::TrackingExporter> const family[] = {
        std::make_shared<AETransformExporter>(),         std::make_shared<AECornerPinExporter>(),
        std::make_shared<AELegacyCornerPinExporter>(),   std::make_shared<AESimpleCornerPinExporter>(false, false),
        std::make_shared<AEPowerPinExporter>(),          std::make_shared<VNTCornerPinExporter>(),
        std::make_shared<KORV_VNTCenterPointExporter>(), std::make_shared<ScratchCornerPinExporter>(),
        std::make_shared<GlimmersetCornerPinExporter>()};
    for (auto const& exporter : family)
    {
        QString const document = text(*exporter, mono);
        EXPECT_EQ(text(*exporter, stereo, Anm::View(1)), document);
        EXPECT_NE(text(*exporter, stereo), document);
    }
}

TEST(CornerPins, YGoesThroughAFloatAndXDoesNot)
{
    // Both coordinates print 1234.565 before rounding; as a float it is 1234.56494.
    ProjectBuilder builder(1, 4000, 2000);
    builder.addLayer("A", {1234.565, 765.435, 2000, 765.435, 1234.565, 1900, 2000, 1900});
    QString const document = text(AESimpleCornerPinExporter(false, false), builder);
    EXPECT_EQ(rows(document, "Effects\tADBE Corner Pin #1\tADBE Corner Pin-0003"),
              QStringList("\t0\t1234.57\t1234.56"));
}

TEST(CornerPins, BadRowsCountOneByOneAlsoThePaddedOnes)
{
    auto const breaks = [](int badFrame)
    {
        return [badFrame](int frame)
        { return frame == badFrame ? ProjectBuilder::translation(std::nan(""), 0) : ProjectBuilder::identity(); };
    };
    ProjectBuilder builder(6);
    builder.addLayer("A").range(3, 5).track(breaks(3));
    EXPECT_EQ(run(VNTCornerPinExporter(), builder).failedCount, 4 * (3 + 1));

    builder.track(breaks(4));
    Korvane::ExportedFiles const transform = run(AETransformExporter(), builder, 3);
    QString const document = QString::fromUtf8(transform.files.value("out.txt"));
    EXPECT_EQ(transform.failedCount, 3);
    EXPECT_EQ(rows(document, "Position").size(), 2);
    EXPECT_EQ(rows(document, "Rotation"), QStringList({"\t3\t0", "\t5\t0"}));
    EXPECT_FALSE(document.contains("nan"));
}

TEST(CornerPins, AnEmptyLayerGivesADocumentWithoutRows)
{
    ProjectBuilder builder(4);
    builder.addLayer("A").layer().tracks.clear();
    EXPECT_TRUE(text(AESimpleCornerPinExporter(false, false), builder)
                    .endsWith("\tComp Pixel Aspect Ratio\t1\n\nEnd of Keyframe Data\n"));
    EXPECT_EQ(rows(text(AECornerPinExporter(), builder), "Position"), QStringList());
    EXPECT_EQ(rows(text(AETransformExporter(), builder), "Rotation"), QStringList());
}

TEST(CornerPins, InsideAPluginGlimmersetCountsFromTheTrimPoint)
{
    ProjectBuilder builder(12);
    builder.model.trimIn = 10;
    builder.addLayer("A").range(9, 11).track([](int) { return ProjectBuilder::identity(); });
    QString const title = "Effects\tCC Power Pin #1\tTop Left";
    EXPECT_EQ(rows(text(GlimmersetCornerPinExporter(), builder), title).first(), "\t9\t860\t490");
    MarloHost::PluginProcess const plugin;
    EXPECT_EQ(rows(text(GlimmersetCornerPinExporter(), builder), title),
              QStringList({"\t-1\t860\t490", "\t0\t860\t490", "\t1\t860\t490"}));
    EXPECT_EQ(rows(text(AEPowerPinExporter(), builder), "Effects\tCC Power Pin #1\tCC Power Pin-0002").first(),
              "\t9\t860\t490");
}

TEST(CornerPins, AnExporterKeepsNothingFromOneExportToTheNext)
{
    AECornerPinExporter const exporter;
    QString const first = text(exporter, turning());
    ProjectBuilder other(5);
    other.addLayer("B");
    run(exporter, other);
    EXPECT_EQ(text(exporter, turning()), first);
    EXPECT_THROW(run(exporter, ProjectBuilder()), KORV_BadArgument) << "no layer at all";
}

}
