// After Effects masks: outlines and motion of a small shot worked by hand, and what
// decides about keys, opacity, blending and the header.

#include "AfterEffects/MarloShapeAEExporter.h"
#include "Host/PluginHost.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace Export;

namespace
{

// The last whole pixel that the importer can carry a point to.
constexpr double END_OF_REACH = 29999;

// Two vertices in a picture of 200 x 100; outlines are texts of 0 to 1.
std::vector<double> const LENS{50, 25, -10, 0, 10, 0, 150, 75, 0, -10, 0, 10};

ProjectBuilder makeShot(int frameCount)
{
    ProjectBuilder builder(frameCount, 200, 100);
    builder.addLayer("A b %1", {50, 25, 150, 25, 50, 75, 150, 75});
    return builder;
}

void addLens(ProjectBuilder& builder, std::vector<double> const& points = LENS)
{
    builder.layer().contours.push_back({"lens", false, true, true, {}, {{0, points, {}}}});
}

QString text(ProjectBuilder const& builder, MarloHost::HostServices const& services = {})
{
    auto const project = builder.make(QString(), services);
    Korvane::ShapeExporter::Options options;
    options.layerExportMode = ZN::AllLayers;
    auto const files = MarloShapeAEExporter().exportShape(*project, "m.shape4ae", {}, options);
    EXPECT_EQ(files->keys(), QStringList("m.shape4ae"));
    return QString::fromUtf8(files->value("m.shape4ae"));
}

// Rows of a block of the mask of that number.
QStringList rows(QString const& document, char const* name, int effect = 1)
{
    QString const start = QString("\nEffects\tmarlo shape #%1\t%2\n\tFrame").arg(effect).arg(QLatin1String(name));
    int const at = document.indexOf(start);
    if (at < 0)
    {
        return {QString("no block ") + name};
    }
    QString const block = document.mid(at + start.size());
    return block.left(block.indexOf("\n\n")).split('\n').mid(1);
}

TEST(Mask, ADocumentAsItIsPasted)
{
    ProjectBuilder builder = makeShot(2);
    builder.track([](int frame) { return ProjectBuilder::translation(20 * frame, 10 * frame); });
    builder.layer().colour = {10, 20, 30, 40};
    addLens(builder);
    QString const block = "\nEffects\tmarlo shape #1\t";
    EXPECT_EQ(text(builder),
              "Adobe After Effects 6.0 Keyframe Data\n"
              "\n"
              "\tUnits Per Second\t24\n"
              "\tSource Width\t200\n"
              "\tSource Height\t100\n"
              "\tSource Pixel Aspect Ratio\t1\n"
              "\tComp Pixel Aspect Ratio\t1\n"
              "\n" +
                  block + "Shape data\n\tFrame\n" +
                  "\t0\tbezier;closed;0.25,0.25,-0.05,0,0.05,0;0.75,0.75,0,-0.1,0,0.1\n"
                  "\t1\tbezier;closed;0.35,0.35,-0.05,0,0.05,0;0.85,0.85,0,-0.1,0,0.1\n" +
                  block + "Translation X\n\tFrame\n\t0\t0\n\t1\t0.1\n" + //
                  block + "Translation Y\n\tFrame\n\t0\t0\n\t1\t0.1\n" + //
                  block + "Scale\n\tFrame\n\t0\t1\n\t1\t1\n" +           //
                  block + "Rotation\n\tFrame\n\t0\t0\n\t1\t0\n" +        //
                  block + "Shear X\n\tFrame\n\t0\t0\n\t1\t0\n" +         //
                  block + "Shear Y\n\tFrame\n\t0\t0\n\t1\t0\n" +         //
                  block + "Perspective X\n\tFrame\n\t0\t0\n\t1\t0\n" +   //
                  block + "Perspective Y\n\tFrame\n\t0\t0\n\t1\t0\n" +   //
                  block + "Blend mode\n\tFrame\n\t\t3\n" +               //
                  block + "Invert\n\tFrame\n\t\t0\n" +                   //
                  block + "Opacity\n\tFrame\n\t\t100\n" +                //
                  block + "Layer name\n\tFrame\n\t\tA b %1\n" +          //
                  block + "Film-back width\n\tFrame\n\t\t36\n" +         //
                  block + "Film-back height\n\tFrame\n\t\t18\n" +        //
                  block +
                  "Shape colour\n\tFrame\talpha\tred\tgreen\tblue\n\t\t40\t10\t20\t30\n"
                  "\n"
                  "End of Keyframe Data\n");
}

TEST(Mask, APointOutOfReachAtOneFrameBakesTheOutline)
{
    struct
    {
        double x;
        bool isXSpline;
        int outlineKeys;
    } const cases[] = {
        {END_OF_REACH - 40, false, 2},
        {END_OF_REACH - 40 + 1, false, 3}, // frame 2 has it 40 pixels further
        {100, true, 3},
    };
    for (auto const& [x, isXSpline, outlineKeys] : cases)
    {
        ProjectBuilder builder = makeShot(3);
        builder.track([](int frame) { return ProjectBuilder::translation(20 * frame, 0); });
        std::vector<double> points = LENS;
        points[0] = x;
        addLens(builder, isXSpline ? std::vector<double>{x, 20, 1, 120, 20, 1, 110, 40, 1} : points);
        builder.layer().contours.back().xspline = isXSpline;
        QString const document = text(builder);
        EXPECT_EQ(rows(document, "Shape data").size(), outlineKeys) << x;
        bool const isBaked = outlineKeys == 3;
        EXPECT_EQ(rows(document, "Translation X"), isBaked ? QStringList({"\t0\t0", "\t1\t0", "\t2\t0"})
                                                           : QStringList({"\t0\t0", "\t1\t0.1", "\t2\t0.2"}));
    }
}

TEST(Mask, KeysOfTheContourInsideTheRangeStandBetweenItsEnds)
{
    ProjectBuilder builder = makeShot(10);
    builder.model.playbackIn = 1;
    builder.range(2, 7).track([](int) { return ProjectBuilder::identity(); });
    addLens(builder);
    auto& keys = builder.layer().contours.back().keys;
    keys = {{1, LENS, {}}, {4, LENS, {}}, {9, LENS, {}}};
    QStringList frames;
    for (QString const& row : rows(text(builder), "Shape data"))
    {
        frames.append(row.section('\t', 1, 1));
    }
    EXPECT_EQ(frames, QStringList({"1", "3", "6"})) << "counted from the playback range";
}

TEST(Mask, OpacityIsFullFromInToOutWithKeysThatMakeTheStep)
{
    struct
    {
        int in, out, playbackIn;
        QStringList rows;
    } const cases[] = {
        {0, 9, 0, {"\t\t100"}},
        {2, 9, 2, {"\t\t100"}},
        {1, 9, 0, {"\t0\t0", "\t1\t100", "\t9\t100"}},
        {3, 5, 0, {"\t0\t0", "\t2\t0", "\t3\t100", "\t5\t100", "\t6\t0"}},
        {4, 8, 3, {"\t0\t0", "\t1\t100", "\t5\t100", "\t6\t0"}},
    };
    for (auto const& [in, out, playbackIn, expected] : cases)
    {
        ProjectBuilder builder = makeShot(10);
        builder.model.playbackIn = playbackIn;
        builder.range(in, out).track([](int) { return ProjectBuilder::identity(); });
        addLens(builder);
        EXPECT_EQ(rows(text(builder), "Opacity"), expected) << in << " to " << out;
    }
}

TEST(Mask, TheFirstMaskOfTheFileIntersectsAndSubtractingLayersSubtract)
{
    ProjectBuilder builder = makeShot(2);
    addLens(builder);
    addLens(builder);
    builder.addLayer("B").layer().subtract = true;
    builder.layer().invert = true;
    addLens(builder);
    builder.addLayer("C");
    addLens(builder);
    QString const document = text(builder);
    QStringList modes;
    QStringList inverts;
    for (int effect = 1; effect <= 4; ++effect)
    {
        modes += rows(document, "Blend mode", effect);
        inverts += rows(document, "Invert", effect);
    }
    EXPECT_EQ(modes, QStringList({"\t\t3", "\t\t1", "\t\t2", "\t\t1"}));
    EXPECT_EQ(inverts, QStringList({"\t\t0", "\t\t0", "\t\t1", "\t\t0"}));
    EXPECT_EQ(document.count("Units Per Second"), 1);
}

struct OtherProgram : Korvane::PluginHost
{
    bool isAdobe() const override
    {
        return true;
    }
    TXIHost const* host() const override
    {
        return nullptr;
    }
    QSize compositionSize() const override
    {
        return {640, 480};
    }
};

TEST(Mask, TheHeaderCountsFieldsAndHasTheSizeOfAPluginHost)
{
    ProjectBuilder builder = makeShot(4);
    builder.clip().interlaced = true;
    addLens(builder);
    EXPECT_TRUE(text(builder).contains("\tUnits Per Second\t48\n\tSource Width\t200\n\tSource Height\t100\n"));
    MarloHost::HostServices services;
    services.pluginHost = std::make_shared<OtherProgram>();
    EXPECT_TRUE(
        text(builder, services).contains("\tUnits Per Second\t48\n\tSource Width\t640\n\tSource Height\t480\n"));
}

TEST(Mask, WithoutMasksThereIsTheFooterAndBadMotionLosesItsRows)
{
    EXPECT_EQ(text(makeShot(2)), "\nEnd of Keyframe Data\n");

    ProjectBuilder builder = makeShot(3);
    builder.track([](int frame) { return ProjectBuilder::translation(frame == 1 ? std::nan("") : 0, 0); });
    addLens(builder);
    QString const document = text(builder);
    EXPECT_EQ(rows(document, "Shape data").size(), 2);
    EXPECT_FALSE(document.contains("nan")) << document.toStdString();
}

}
