// Files of the blending plug-in: their headers, and vertices that come back through the
// documented inverse.

#include "Host/KORV_Clip.h"
#include "Host/KORV_Exception.h"
#include "Nuke/MarloBlendExporter.h"
#include "Nuke/MarloBlendTrackingExporter.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

#include <QRegularExpression>

#include <cmath>

using namespace Export;

namespace
{

ProjectBuilder makeShot()
{
    ProjectBuilder builder(3);
    builder.model.frameRate = 23.976;
    builder.model.playbackIn = 1;
    builder.clip().frameOffset = 1001;
    builder.clip().interlaced = true;
    builder.clip().pixelAspect = 1.0940170940170941;
    builder.addLayer("wall %1");
    return builder;
}

constexpr char CLIP_LINES[] = "\tProject Frame Offset 1001\n"
                              "\tProject In Point 1\n"
                              "\tSource Frame Offset 1001\n"
                              "\tUnits Per Second 23.976\n"
                              "\tSource Width 1920\n"
                              "\tSource Height 1080\n"
                              "\tSource Pixel Aspect Ratio 1.09402\n"
                              "\tComp Pixel Aspect Ratio 1.09402\n";

QByteArray shapes(ProjectBuilder const& builder)
{
    auto const project = builder.make();
    Korvane::ShapeExporter::Options options;
    options.layerExportMode = ZN::AllLayers;
    return MarloBlendExporter(false).exportShape(*project, "s.txt", {}, options)->value("s.txt");
}

TEST(MarloBlendShape, HeaderThenTheNodeWithoutVersionAndRoot)
{
    QByteArray const text = shapes(makeShot());
    EXPECT_TRUE(text.startsWith(QByteArray("MarloBlend shape data\n\tVersion 1\n") + CLIP_LINES +
                                "MarloBlendShape {\n curves {AnimTree: \"\" {\n Node: {\n  NodeName: \"Root\" {\n"))
        << text.constData();
    EXPECT_TRUE(text.endsWith(" }\n}\n}\nname Roto_wall_%1\n}\n"));

    EXPECT_EQ(shapes(ProjectBuilder()), "MarloBlend shape data\n\tVersion 1\n\tProject Frame Offset 0\n"
                                        "\tProject In Point 0\n\tSource Frame Offset 0\n\tUnits Per Second 24\n"
                                        "\tSource Width 1920\n\tSource Height 1080\n"
                                        "\tSource Pixel Aspect Ratio 1\n\tComp Pixel Aspect Ratio 1\n")
        << "no layer, no clip: as the project";
}

/// The value of each still curve of the outline, in the order in which they are written.
std::vector<double> curveValues(QByteArray const& text)
{
    std::vector<double> values;
    int const start = text.indexOf("NumOfPoints");
    QRegularExpression const curve("S 1 \\d+ (\\S+)");
    auto it = curve.globalMatch(QString::fromUtf8(text.mid(start, text.indexOf('}', start) - start)));
    while (it.hasNext())
        values.push_back(it.next().captured(1).toDouble());
    return values;
}

TEST(MarloBlendShape, VerticesComeBackThroughTheInverseAndHandlesArePlain)
{
    std::vector<double> const points{100.125, 200, -3, -4, 1, 2, 3950.75, 1070.0625, -7, -8, 5, 6};
    QByteArray written[2];
    for (int rate : {24, 25})
    {
        ProjectBuilder builder(1);
        builder.model.frameRate = rate;
        builder.addLayer("A").layer().contours.push_back({"lens", false, true, true, {}, {{0, points, {}}}});
        QByteArray const text = shapes(builder);
        std::uint64_t const seed = MarloBlendExporter::seedOf(text.left(text.indexOf("MarloBlendShape {")));
        std::vector<double> const values = curveValues(text);
        ASSERT_EQ(values.size(), 12u) << text.constData();
        for (std::size_t vertex = 0; vertex < 2; ++vertex)
        {
            double const* const in = &points[6 * vertex];
            double const* const out = &values[6 * vertex];
            for (std::size_t axis = 0; axis < 2; ++axis)
            {
                EXPECT_EQ(out[axis], in[2 + axis]) << "arrives";
                EXPECT_NEAR(MarloBlendExporter::plainValue(out[2 + axis], seed), in[axis], 0.0005);
                EXPECT_GT(std::abs(out[2 + axis] - in[axis]), 1000) << "scrambled";
                EXPECT_EQ(out[4 + axis], in[4 + axis]) << "leaves";
            }
        }
        EXPECT_EQ(shapes(builder), text);
        written[rate - 24] = text.mid(text.indexOf("CubicCurve"));
    }
    EXPECT_NE(written[0], written[1]) << "another header is another key";
}

// The numbers of the key are what readers in the field have.
TEST(MarloBlendShape, TheKeyStaysWhatItIs)
{
    EXPECT_EQ(MarloBlendExporter::seedOf(""), 0xcbf29ce484222325U);
    EXPECT_EQ(MarloBlendExporter::seedOf("a"), 0xaf63dc4c8601ec8cU);
    EXPECT_EQ(MarloBlendExporter::plainValue(1009.625 * 8 - 262144.5, 0), 8);
    EXPECT_EQ(MarloBlendExporter::plainValue(1012.625 * 8 - 262144.5, 97 * 5 + 3), 8);
    EXPECT_EQ(MarloBlendExporter(false).obfuscate(8), 1009.625 * 8 - 262144.5);
}

TEST(MarloBlendTracking, HeaderAndTheBlocksOfThePinWithMotionBlur)
{
    auto const project = makeShot().make();
    Anm::Context const start(Anm::Time::fromInt(0), Anm::View::defaultView());
    QByteArray const text = MarloBlendTrackingExporter()
                                .exportTracking(*project, "t.txt", project->toolManager()->currentLayerID(), start, {})
                                .files.value("t.txt");
    EXPECT_TRUE(
        text.startsWith(QByteArray("MarloBlend tracking data\n") + CLIP_LINES + "\tLayer Name wall %1\n\nPosition\n"))
        << text.constData();
    QByteArray order;
    for (char const* title :
         {"\n\nRotation\n", "\n\nScale\n", "\n\nEffects\tADBE Corner Pin #1\tADBE Corner Pin-0001\n",
          "\tADBE Corner Pin-0004\n", "\n\nEnd of Keyframe Data\n"})
    {
        int const at = text.indexOf(title);
        EXPECT_GT(at, order.size()) << title;
        order = text.left(at);
    }
}

}
