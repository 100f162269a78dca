// Project files: what is read, what is refused and with which words, and that
// writing loses nothing.

#include "ProjectBuilder.h"
#include "Refusals.h"

#include "Host/KORV_Clip.h"
#include "Host/KORV_Exception.h"
#include "Host/ZN_ClipInfo.h"

#include <gtest/gtest.h>

#include <cmath>

using MarloHost::readProject;
using MarloHost::writeProject;

namespace
{

// A project that has every key.
QByteArray fullProject()
{
    return R"({
  "marloProject": 1,
  "frameRate": 23.976,
  "clips": [
    { "name": "plate", "width": 720, "height": 576, "pixelAspect": 1.0940170940170941, "frameCount": 20,
      "frameOffset": -3, "interlaced": true, "lowerFieldFirst": true, "pulldown": 3,
      "footage": { "kind": "sequence", "directory": "/p%1", "prefix": "a%", "suffix": ".dpx", "indexWidth": 4,
                   "firstIndex": 98 }, "filmBack": { "width": 24.5, "height": 14 } },
    { "name": "b", "width": 64, "height": 32, "frameCount": 10, "footage": { "kind": "movie", "file": "/m/b.mov" } }
  ],
  "views": ["left", "right"],
  "groups": [
    { "name": "in", "parent": "out", "selected": true, "moving": true },
    { "name": "out", "hidden": true }
  ],
  "currentFrame": 4,
  "currentLayer": "B \"%1\"/\u00fc",
  "currentView": "right",
  "displayClip": "b",
  "playback": [2, 17],
  "trim": [1, 18],
  "layers": [
    { "name": "A", "insertClip": "b", "group": "in", "surface": { "referenceFrame": 0, "corners": [0, 0, 10, 0, 0, 10, 10, 10] } },
    { "name": "B \"%1\"/\u00fc", "clip": "b", "in": 2, "out": 8, "hidden": true, "selected": true, "moving": true,
      "surface": { "referenceFrame": 3, "corners": [0.1, 0, 10, 0, 0, 10, 10, 10] },
      "tracking": [
        { "firstFrame": 3, "homographies": [1, 0, 0, 0, 1, 0, 0, 0, 1, 1, 0.3, 0, 0, 1, 0, 1e-7, 0, 1] },
        { "view": "right", "frames": [2, 5], "homographies": [1, 0, 0, 0, 1, 0, 0, 0, 1, 2, 0, 0, 0, 2, 0, 0, 0, 1] }
      ],
      "adjust": [ { "frame": 3, "offsets": [1, 2, 3, 4, 5, 6, 7, 8.5] } ],
      "stabilize": { "rangeStart": 3, "rangeEnd": 7, "fixedFrames": [4, 6] } }
  ]
})";
}

TEST(ProjectFile, EveryKeyReachesTheHost)
{
    auto const project = MarloHost::makeProject(readProject(fullProject(), "full.json"), "/shots/full.json");
    KORV_Layer const* const current = project->currentLayer();
    ASSERT_TRUE(current);
    EXPECT_EQ(current->name(), QString::fromUtf8("B \"%1\"/\u00fc"));
    EXPECT_EQ(current->numericID(), 2u);
    EXPECT_EQ(current->trackingInputClipID(true, false, true), 2u);
    EXPECT_EQ(current->inPoint(false), 2u);
    EXPECT_EQ(current->outPoint(false), 8u);
    EXPECT_TRUE(current->isHidden(false) && current->isSelected() && current->isMoving());
    EXPECT_EQ(current->surface().referenceFrame.frameValue(), 3);
    EXPECT_EQ(current->stabilizeRangeStart(project->currentFrame()), 3u);
    EXPECT_EQ(current->stabilizeRangeEnd(project->currentFrame()), 7u);
    EXPECT_EQ(current->stabilizeParameters().fixedFrames().keyframeCount(Anm::View::defaultView()), 2u);

    KORV_Layer const* const top = project->sm()->topLayer();
    EXPECT_EQ(top->layerBelow(), current);
    EXPECT_FALSE(top->isHidden(false));
    EXPECT_TRUE(top->isHidden(true)) << "the outermost group is hidden";
    EXPECT_EQ(top->parentGroup(true)->name(), "in");
    EXPECT_EQ(top->parentGroup(false)->name(), "out");
    EXPECT_TRUE(top->parentGroup(true)->isMoving() && top->parentGroup(true)->isSelected());
    EXPECT_EQ(top->outPoint(false), 19u) << "the whole clip";

    ZN_BaseClipInfo const* const plate = project->parameterManager()->getBaseClipInfo(1);
    EXPECT_EQ(plate->height(), 288u) << "lines of a field";
    EXPECT_EQ(plate->format().par(), 1.0940170940170941);
    EXPECT_EQ(plate->baseClipOffset(), -3);
    EXPECT_TRUE(plate->bIs32Pulldown());
    EXPECT_EQ(plate->phase(), ZN_BaseClipInfo::PulldownLowerFieldFirst + 3);
    EXPECT_EQ(plate->filmType().filmBackWidth(), 24.5);
    EXPECT_TRUE(plate->filmType().isCustom());
    EXPECT_EQ(top->getInsertClipID(Anm::View::defaultView()), 2u);
    EXPECT_EQ(current->getInsertClipID(Anm::View::defaultView()), 0u);
    EXPECT_EQ(project->frameRate(), 23.976);
    EXPECT_EQ(project->currentView().id(), 1);
    EXPECT_EQ(project->currentFrame().frameValue(), 4);
    EXPECT_EQ(project->renderingContext()->getDisplayClipID(), 2u);
    EXPECT_EQ(project->playbackInPoint(false), 2u);
    EXPECT_EQ(project->playbackOutPoint(false), 17u);
    EXPECT_EQ(project->playbackOutPoint(true), 7u) << "(17 - 3) fields are 7 frames";
    EXPECT_EQ(project->projProps().trimInPoint(), 1);
    EXPECT_EQ(project->projProps().size(), QSize(720, 576));
    EXPECT_EQ(project->projectFilePath(), "/shots/full.json");
}

TEST(ProjectFile, FootageNamesItsFiles)
{
    auto const project = MarloHost::makeProject(readProject(fullProject(), "full.json"));
    KORV_ParameterManager const& clips = *project->parameterManager();
    Anm::View const view = Anm::View::defaultView();
    auto const sourceFile = [&](unsigned int clip, int frame)
    {
        Anm::Context const context(Anm::Time::fromInt(frame), view);
        return clips.getFrameSourceFile(*clips.getClip(clip), Anm::Context::Explicit(context), false);
    };
    // Two fields share a file: 20 fields from index 98 on end at 107.
    ZN_ClipInfo const& sequence = *clips.getClipInfo(1, false);
    EXPECT_EQ(sequence.footageKind(), ZN_ClipInfo::ImageSequence);
    EXPECT_EQ(sequence.minIndex(view, Anm::View::Mapped), 98);
    EXPECT_EQ(sequence.maxIndex(view, Anm::View::Mapped), 107);
    EXPECT_EQ(sequence.clipPrefix(view, Anm::View::Mapped).escaped(), "a%25");
    EXPECT_EQ(sequence.clipPrefix(view, Anm::View::Mapped).plain(), "a%");
    EXPECT_EQ(sequence.firstFileName(), "/p%1/a%250098.dpx");
    EXPECT_EQ(sourceFile(1, 0), sequence.firstFileName());
    EXPECT_EQ(sourceFile(1, 5), "/p%1/a%250100.dpx");

    ZN_ClipInfo const& movie = *clips.getClipInfo(2, false);
    EXPECT_EQ(movie.footageKind(), ZN_ClipInfo::MediaFile);
    EXPECT_EQ(movie.clipDirectory(view, Anm::View::Mapped), "/m");
    EXPECT_EQ(movie.clipPrefix(view, Anm::View::Mapped).plain(), "b.mov");
    EXPECT_EQ(movie.indexWidth(view, Anm::View::Mapped), 0u);
    EXPECT_EQ(sourceFile(2, 7), "/m/b.mov");
    EXPECT_EQ(movie.filmType().filmBackHeight(), 18) << "36 mm wide, two to one";

    auto const plain = ProjectBuilder().make();
    EXPECT_EQ(plain->parameterManager()->getClipInfo(1, false)->footageKind(), ZN_ClipInfo::Solid);
    EXPECT_EQ(clips.getClipInfo(3, false), nullptr);
}

TEST(ProjectFile, WritingLosesNothing)
{
    expectWrittenAsRead(fullProject());
}

TEST(ProjectFile, AFactorOnAHomographyMeansNothing)
{
    for (double const factor : {1.0, -2.5, 1e-120, 1e110})
    {
        ProjectBuilder builder(1);
        builder.addLayer("A").track([&](int)
                                    { return ProjectBuilder::Matrix{factor, 0, 5, 0, factor, 7, 0, 0, factor}; });
        builder.layer().tracks[0].homographies[2] *= factor;
        builder.layer().tracks[0].homographies[5] *= factor;
        EXPECT_NO_THROW(readProject(writeProject(builder.model), "scaled.json")) << factor;
    }
}

TEST(ProjectFile, NumbersThatJsonCannotHoldAreNotWritten)
{
    ProjectBuilder builder;
    builder.addLayer("A").layer().corners[0] = NAN;
    EXPECT_THROW(writeProject(builder.model), KORV_BadArgument);
}

class Refused : public testing::TestWithParam<Refusal>
{
};

TEST_P(Refused, WithPathAndCauseInOneLine)
{
    expectRefused(fullProject(), GetParam());
}

// What a schema can tell and what of one thing contradicts another, a reader holds against the
// program; here are the words, and limits that come from elsewhere in the project.
INSTANTIATE_TEST_SUITE_P(
    Table, Refused,
    testing::Values(
        Refusal{"\"marloProject\": 1", "\"marloProject\": 2", "$.marloProject", "version 1"},
        Refusal{"\"marloProject\": 1,", "", "$", "\"marloProject\" is missing"},
        Refusal{"23.976", "\"24\"", "$.frameRate", "expected a number, found a string"},
        Refusal{"23.976", "0", "$.frameRate", "out of range"}, Refusal{"23.976", "1e999", "$.frameRate", "line 3"},
        Refusal{"\"width\": 720", "\"widht\": 720", "$.clips[0].widht", "unknown key; the keys here are name, width"},
        Refusal{"\"width\": 720", "\"name\": 720", "$.clips[0].name", "twice"},
        Refusal{"\"kind\": \"movie\"", "\"kind\": \"solid\"", "$.clips[1].footage.file", "doesn't have it"},
        Refusal{"\"out\": 8", "\"out\": 10", "$.layers[1].out", "out of range"},
        Refusal{"[0.1, 0, 10, 0, 0, 10, 10, 10]", "[0, 0, 10, 0, 0, 10, 10]", "$.layers[1].surface.corners",
                "expected 8 numbers, found 7"},
        Refusal{"[0.1, 0, 10, 0, 0, 10, 10, 10]", "[0, 0, 10, 0, 10, 10, 0, 10]", "$.layers[1].surface.corners",
                "crosses itself"},
        Refusal{"[0.1, 0, 10, 0, 0, 10, 10, 10]", "[0, 0, 10, 0, 0, 10, 2, 2]", "$.layers[1].surface.corners",
                "bends inward"},
        Refusal{"\"rangeEnd\": 7", "\"rangeEnd\": 2", "$.layers[1].stabilize.rangeEnd", "before it starts"},
        Refusal{"1, 0.3, 0, 0, 1, 0, 1e-7, 0, 1]", "1, 2, 3, 2, 4, 6, 0, 0, 1]", "$.layers[1].tracking[0].homographies",
                "homography 1 (numbers 9 to 17) is singular"},
        Refusal{"\"frames\": [2, 5]", "\"frames\": [2]", "$.layers[1].tracking[1].frames", "1 frames for 2"},
        Refusal{"\"firstFrame\": 3", "\"firstFrame\": 9", "$.layers[1].tracking[0].homographies", "don't fit"},
        Refusal{"\"currentFrame\": 4", "\"currentFrame\": 20", "$.currentFrame", "out of range"},
        Refusal{"[2, 17]", "[2, 20]", "$.playback", "20"}, Refusal{"[2, 17]", "[2, 17", "$.playback[3]", "line 21"}));

TEST(ProjectFile, HostileTextsAreRefusedBeforeATreeIsBuilt)
{
    EXPECT_THROW(readProject(QByteArray(50'000'000, '['), "deep"), KORV_BadFile);
    EXPECT_THROW(readProject(QByteArray("{\"a\":").repeated(1'000'000), "deep"), KORV_BadFile);
    QByteArray keys = "{";
    for (int i = 0; i < 100'000; ++i)
    {
        keys += '"' + QByteArray::number(i) + "\":0,";
    }
    EXPECT_THROW(readProject(keys, "keys"), KORV_BadFile);
    // Cut off anywhere: an error, never a project and never a crash.
    QByteArray const text = fullProject();
    for (int length = 0; length < text.size(); ++length)
    {
        EXPECT_THROW(readProject(text.left(length), "cut"), KORV_BadFile) << length;
    }
}

TEST(Project, NamesThatDangleAreRefusedAndLayersShareNamesFromTheTop)
{
    ProjectBuilder builder;
    builder.addLayer("twin").addLayer("twin");
    EXPECT_EQ(builder.make()->currentLayer()->numericID(), 1u);
    EXPECT_EQ(builder.make()->sm()->findLayers("twin", false).size(), 2);
    builder.model.currentLayer = "nobody";
    EXPECT_THROW(builder.make(), KORV_BadArgument);

    auto const project = ProjectBuilder().addLayer("a").addLayer("b").make();
    MarloHost::setCurrentLayer(*project, 1);
    EXPECT_EQ(project->currentLayer()->name(), "a");
    EXPECT_EQ(project->toolManager()->currentLayerID(), 1u);
    MarloHost::setCurrentLayer(*project, 0);
    EXPECT_EQ(project->currentLayer(), nullptr);
    EXPECT_THROW(MarloHost::setCurrentLayer(*project, 3), KORV_BadArgument);
    EXPECT_THROW(MarloHost::setCurrentView(*project, Anm::View(1)), KORV_BadArgument);
}

}
