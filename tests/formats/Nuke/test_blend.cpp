// Files of the blending plug-in: their headers, and the key of their numbers.

#include "Nuke/MarloBlendExporter.h"
#include "Nuke/MarloBlendTrackingExporter.h"
#include "ProjectBuilder.h"

#include <gtest/gtest.h>

using namespace Export;

namespace
{

/// The layer is on the second of two clips.
ProjectBuilder makeShot()
{
    ProjectBuilder builder(3);
    builder.model.frameRate = 23.976;
    builder.model.playbackIn = 1;
    builder.clip().frameOffset = 1001;
    builder.clip().pixelAspect = 2;
    MarloHost::ClipModel second = builder.clip();
    second.name = "second";
    second.height = 540;
    second.frameOffset = 50;
    second.interlaced = true;
    second.pixelAspect = 1.0940170940170941;
    builder.model.clips.push_back(second);
    builder.addLayer("wall %1").layer().clip = second.name;
    return builder;
}

constexpr char CLIP_LINES[] = "\tProject Frame Offset 1001\n"
                              "\tProject In Point 1\n"
                              "\tSource Frame Offset 50\n"
                              "\tUnits Per Second 23.976\n"
                              "\tSource Width 1920\n"
                              "\tSource Height 540\n"
                              "\tSource Pixel Aspect Ratio 1.09402\n"
                              "\tComp Pixel Aspect Ratio 2\n";

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
    EXPECT_TRUE(
        text.startsWith(QByteArray("MarloBlend shape data\n\tVersion 1\n") + CLIP_LINES + "MarloBlendShape {\n"))
        << text.constData();
    EXPECT_TRUE(text.endsWith("\nname Roto_wall_%1\n}\n"));

    QByteArray const nothing = shapes(ProjectBuilder());
    EXPECT_TRUE(nothing.contains("\tSource Frame Offset 0\n") && nothing.contains("\tSource Height 1080\n") &&
                nothing.endsWith("\tComp Pixel Aspect Ratio 1\n"))
        << "no layer, no clip: as the project";
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
    EXPECT_TRUE(text.contains("\nRotation\n") && text.contains("\nEffects\tADBE Corner Pin #1\t"));
}

}
