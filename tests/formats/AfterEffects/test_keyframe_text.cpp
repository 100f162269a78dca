// The keyframe text: the builder by itself, and what each exporter of the family
// adds to it.

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

Korvane::ExportedFiles run(Korvane::TrackingExporter const& exporter, ProjectBuilder const& builder,
                           Korvane::TrackingExporter::Options const& options = {}, int reference = 0)
{
    auto const project = builder.make();
    Anm::Context const context(Anm::Time::fromInt(reference), Anm::View::defaultView());
    return exporter.exportTracking(*project, "out.txt", project->toolManager()->currentLayerID(), context, options);
}

QString text(Korvane::TrackingExporter const& exporter, ProjectBuilder const& builder)
{
    return QString::fromUtf8(run(exporter, builder).files.value("out.txt"));
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

QStringList titles(QString const& document)
{
    QStringList found;
    QStringList const lines = document.split('\n');
    for (int i = 1; i < lines.size(); ++i)
    {
        if (lines[i].startsWith("\tFrame\t"))
        {
            found.append(lines[i - 1]);
        }
    }
    return found;
}

TEST(KeyframeBuilder, HeaderBlocksAndFooterStandAsThePasteTakesThem)
{
    AEExportBuilder builder(AEExportBuilder::AfterEffects);
    builder.addExportHeader(23.976F, 1920, 1080, 1.0940170940170941);
    builder.addParamHeader("Time Remap", {"Seconds"});
    builder.addValue(0.5F, 1.0 / 3);
    builder.newEffect("E%1");
    builder.addParamHeader("P%2", {});
    builder.addStaticValue("2");
    builder.addValue(3, QString("text"));
    builder.addValues(4, {});
    builder.addExportFooter();
    EXPECT_EQ(builder.getText(), "Adobe After Effects 6.0 Keyframe Data\n"
                                 "\n"
                                 "\tUnits Per Second\t23.976\n"
                                 "\tSource Width\t1920\n"
                                 "\tSource Height\t1080\n"
                                 "\tSource Pixel Aspect Ratio\t1.09402\n"
                                 "\tComp Pixel Aspect Ratio\t1.09402\n"
                                 "\n"
                                 "Time Remap\n"
                                 "\tFrame\tSeconds\n"
                                 "\t0.5\t0.333333\n"
                                 "\n"
                                 "Effects\tE%1 #1\tP%2\n"
                                 "\tFrame\n"
                                 "\t\t2\n"
                                 "\t3\ttext\n"
                                 "\t4\t\n"
                                 "\n"
                                 "End of Keyframe Data\n");
    EXPECT_EQ(builder.getEffectID(), 1);
    EXPECT_EQ(builder.getErrorCount(), 0u);
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

// Half a turn and more, so that the sign and the unwrapping show.
ProjectBuilder turning()
{
    ProjectBuilder builder(3);
    builder.addLayer("A");
    builder.track(
        [](int frame)
        { return ProjectBuilder::similarity(960, 540, -2.0 * frame, 1 + 0.25 * frame, 3 * frame, -4 * frame); });
    return builder;
}

TEST(Transform, PositionScaleAndClockwiseRotation)
{
    QString const document = text(AETransformExporter(), turning());
    EXPECT_EQ(titles(document), QStringList({"Position", "Scale", "Rotation"}));
    EXPECT_EQ(rows(document, "Position"), QStringList({"\t0\t960\t540\t0", "\t1\t963\t544\t0", "\t2\t966\t548\t0"}));
    EXPECT_EQ(rows(document, "Scale"), QStringList({"\t0\t100\t100\t100", "\t1\t125\t125\t100", "\t2\t150\t150\t100"}));
    EXPECT_EQ(rows(document, "Rotation"), QStringList({"\t0\t0", "\t1\t114.592", "\t2\t229.183"}));
}

struct Family
{
    char const* name;
    std::shared_ptr<Korvane::TrackingExporter> exporter;
    QStringList titles;
};

QStringList effect(char const* start, QStringList const& corners)
{
    QStringList lines;
    for (QString const& corner : corners)
    {
        lines.append(QString("Effects\t%1 #1\t%2").arg(start, corner));
    }
    return lines;
}

TEST(CornerPins, EachTargetHasItsBlocksInItsOrder)
{
    QStringList const transforms{"Position", "Rotation", "Scale"};
    QStringList const adobe = effect("ADBE Corner Pin", {"ADBE Corner Pin-0001", "ADBE Corner Pin-0002",
                                                         "ADBE Corner Pin-0003", "ADBE Corner Pin-0004"});
    QStringList const topBottom{"Top Left", "Top Right", "Bottom Left", "Bottom Right"};
    QString const vantarium = "Tracker Center KF";
    Family const family[] = {
        {"blur", std::make_shared<AECornerPinExporter>(), transforms + adobe},
        {"cs3", std::make_shared<AELegacyCornerPinExporter>(),
         transforms + effect("Corner Pin", {"Upper Left", "Upper Right", "Lower Left", "Lower Right"})},
        {"simple", std::make_shared<AESimpleCornerPinExporter>(false, false), adobe},
        {"power", std::make_shared<AEPowerPinExporter>(),
         effect("CC Power Pin", {"CC Power Pin-0002", "CC Power Pin-0003", "CC Power Pin-0004", "CC Power Pin-0005"})},
        {"vantarium", std::make_shared<VNTCornerPinExporter>(),
         effect("VNT Corner Pin", {vantarium, vantarium, vantarium, vantarium})},
        {"centre", std::make_shared<KORV_VNTCenterPointExporter>(), effect("VNT Match Move", {vantarium})},
        {"scratch", std::make_shared<ScratchCornerPinExporter>(), transforms + effect("SCRATCH Corner Pin", topBottom)},
        {"glimmerset", std::make_shared<GlimmersetCornerPinExporter>(), effect("CC Power Pin", topBottom)},
    };
    for (Family const& one : family)
    {
        QString const document = text(*one.exporter, turning());
        EXPECT_EQ(titles(document), one.titles) << one.name;
        EXPECT_EQ(document.section('\n', 0, 0), QLatin1String(one.name) == QLatin1String("scratch")
                                                    ? "Assimilate SCRATCH Keyframe Data"
                                                    : "Adobe After Effects 6.0 Keyframe Data");
        EXPECT_TRUE(document.endsWith("\n\nEnd of Keyframe Data\n")) << one.name;
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

TEST(CornerPins, PaddingHoldsTheFirstValueFromFrameZero)
{
    ProjectBuilder builder(6);
    builder.addLayer("A").range(3, 5).track([](int frame) { return ProjectBuilder::translation(frame, 0); });
    QStringList const padded{"\t0\t863\t490", "\t1\t863\t490", "\t2\t863\t490",
                             "\t3\t863\t490", "\t4\t864\t490", "\t5\t865\t490"};
    QString const pin = text(VNTCornerPinExporter(), builder);
    EXPECT_EQ(pin.count("\t2\t"), 4) << "in each of the four blocks";
    EXPECT_EQ(rows(pin, "Effects\tVNT Corner Pin #1\tTracker Center KF"), padded);
    EXPECT_EQ(rows(text(AESimpleCornerPinExporter(false, false), builder),
                   "Effects\tADBE Corner Pin #1\tADBE Corner Pin-0001"),
              padded.mid(3));
    EXPECT_EQ(rows(text(KORV_VNTCenterPointExporter(), builder), "Effects\tVNT Match Move #1\tTracker Center KF"),
              QStringList({"\t0\t963\t540", "\t1\t963\t540", "\t2\t963\t540", "\t3\t963\t540", "\t4\t964\t540",
                           "\t5\t965\t540"}));
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
    Korvane::ExportedFiles const transform = run(AETransformExporter(), builder, {}, 3);
    QString const document = QString::fromUtf8(transform.files.value("out.txt"));
    EXPECT_EQ(transform.failedCount, 3);
    EXPECT_EQ(rows(document, "Position").size(), 2);
    EXPECT_EQ(rows(document, "Rotation"), QStringList({"\t3\t0", "\t5\t0"}));
    EXPECT_FALSE(document.contains("nan"));
}

TEST(CornerPins, AnEmptyLayerGivesADocumentWithoutRows)
{
    ProjectBuilder builder(4);
    builder.addLayer("%1").layer().tracks.clear();
    Korvane::ExportedFiles const simple = run(AESimpleCornerPinExporter(false, false), builder);
    EXPECT_EQ(titles(simple.files.value("out.txt")), QStringList());
    EXPECT_TRUE(simple.files.value("out.txt").endsWith("\tComp Pixel Aspect Ratio\t1\n\nEnd of Keyframe Data\n"));
    EXPECT_EQ(simple.messages, QStringList("out.txt: Layer \"%1\" has no tracking data"));
    EXPECT_EQ(titles(text(AECornerPinExporter(), builder)), QStringList({"Position", "Rotation", "Scale"}));
    EXPECT_EQ(rows(text(AETransformExporter(), builder), "Rotation"), QStringList());
}

TEST(CornerPins, InterlacedMaterialIsInFieldsOrWholeFrames)
{
    ProjectBuilder builder(4);
    builder.clip().interlaced = true;
    builder.addLayer("A", {100, 100, 200, 100, 100, 200, 200, 200});
    QString const simple = text(AESimpleCornerPinExporter(false, false), builder);
    EXPECT_TRUE(simple.contains("\tSource Height\t540\n"));
    // 540 lines of a field times two, minus the field line of the corner.
    EXPECT_EQ(rows(simple, "Effects\tADBE Corner Pin #1\tADBE Corner Pin-0001"),
              QStringList({"\t0\t100\t880", "\t0.5\t100\t880", "\t1\t100\t880", "\t1.5\t100\t880"}));

    QString const whole = text(VNTCornerPinExporter(), builder);
    EXPECT_TRUE(whole.contains("\tSource Height\t1080\n"));
    EXPECT_EQ(rows(whole, "Effects\tVNT Corner Pin #1\tTracker Center KF"),
              QStringList({"\t0\t100\t880", "\t1\t100\t880"}));

    QString const centre = text(KORV_VNTCenterPointExporter(), builder);
    EXPECT_TRUE(centre.contains("\tSource Height\t1080\n"));
    // The centre is 390 field lines below the top edge; 540 are taken off.
    EXPECT_EQ(rows(centre, "Effects\tVNT Match Move #1\tTracker Center KF"),
              QStringList({"\t0\t150\t-150", "\t1\t150\t-150"}));
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
