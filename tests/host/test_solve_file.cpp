// The 3D scene in a project file: what is read, what is written, what is refused.

#include "SolveBuilder.h"
#include "Refusals.h"

#include "Host/KORV_Exception.h"

#include <gtest/gtest.h>

namespace
{

using MarloHost::ProjectModel;
using MarloHost::readProject;
using MarloHost::writeProject;

QByteArray fullSolve()
{
    return R"({
  "marloProject": 1,
  "frameRate": 24,
  "clips": [ { "name": "plate", "width": 1920, "height": 1080, "frameCount": 20 },
             { "name": "short", "width": 1920, "height": 1080, "frameCount": 5 } ],
  "views": ["left", "right"],
  "groups": [ { "name": "still" },
    { "name": "car", "moving": true,
      "pose": { "firstFrame": 2, "positions": [0, 0, 0, 1, 0, 0], "rotations": [0, 0, 0, 0, 90, 0], "scales": [1, 2] } } ],
  "layers": [
    { "name": "A", "clip": "short", "group": "car", "moving": true, "surface": { "corners": [0, 0, 9, 0, 0, 9, 9, 9] },
      "pose": { "frames": [0, 4], "positions": [1, 2, 3, 4, 5, 6.5] },
      "surfacePoints": { "positions": [0, 0, 0, 1, 0, 0, 0, 1, 0], "names": ["a", "b", "\u00fc"], "inaccurate": [0, 2],
        "faceCounts": [3], "faceIndices": [0, 1, 2], "uvs": [0, 0, 1, 0, 0, 1] },
      "meshPoints": { "frames": [1, 3], "positions": [0, 0, 0, 7, 0, 0] } },
    { "name": "B", "surface": { "corners": [0, 0, 9, 0, 0, 9, 9, 9] }, "pose": { "positions": [0, 0, 8] } }
  ],
  "solve": {
    "camera": { "frames": [0, 19], "positions": [0, 1, 9, 0, 1, 5], "rotations": [0, 0, 0, 5, 0, 0],
      "focalLength": { "frames": [0, 19], "values": [20, 40] }, "filmBackWidth": 24.9 },
    "stereo": { "mode": "converged", "separation": 0.06, "convergence": 1.5, "shiftLeft": 2,
      "shiftRight": { "frames": [3], "values": [-2] } },
    "scene": { "positions": [1, 0, 0], "rotations": [0, 91, 0], "scales": [2.5] },
    "referenceFrame": 3,
    "legacy": true,
    "features": [ { "name": "wall", "hidden": true, "selected": true, "positions": [0, 0, 0.5] },
                  { "name": "paint", "layer": "A", "frames": [0, 1], "positions": [0, 0, 0, 1, 1, 1] } ],
    "featureRoot": { "name": "root", "positions": [0, 0, 11] },
    "assets": [ { "path": "/m/car.abc", "layer": "A" }, { "path": "b.obj", "positions": [1, 2, 33], "scales": [4] } ]
  }
})";
}

TEST(SolveFile, WritingAndReadingGivesTheSameTextAndLosesNothing)
{
    QByteArray const once = writeProject(readProject(fullSolve(), "full.json"));
    EXPECT_EQ(writeProject(readProject(once, "once.json")), once);
    ProjectModel const model = readProject(once, "once.json");
    MarloHost::SolveModel const& solve = *model.solve;
    EXPECT_EQ(model.groups[1].pose.frames, (std::vector<int>{2, 3}));
    EXPECT_EQ(model.groups[1].pose.scales, (std::vector<double>{1, 2}));
    EXPECT_EQ(model.layers[0].pose.positions[5], 6.5);
    EXPECT_EQ(model.layers[0].surfacePoints->names, (QStringList{"a", "b", QString::fromUtf8("\u00fc")}));
    EXPECT_EQ(model.layers[0].surfacePoints->inaccurate, (std::vector<int>{0, 2}));
    EXPECT_EQ(model.layers[0].surfacePoints->uvs[5], 1);
    EXPECT_EQ(model.layers[0].meshPoints->pointCount(), 1);
    EXPECT_EQ(model.layers[1].pose.positions[2], 8);
    EXPECT_EQ(solve.camera.pose.rotations[3], 5);
    EXPECT_EQ(solve.camera.focalLength.values[1], 40);
    EXPECT_EQ(solve.camera.filmBackWidth, 24.9);
    EXPECT_TRUE(solve.stereo && solve.stereo->converged && solve.legacy);
    EXPECT_EQ(solve.stereo->shift[1].values[0], -2);
    EXPECT_EQ(solve.scene.scales[0], 2.5);
    EXPECT_EQ(solve.referenceFrame, 3);
    EXPECT_TRUE(solve.features[0].hidden && solve.features[0].selected);
    EXPECT_EQ(solve.features[1].layer, "A");
    EXPECT_EQ(solve.featureRootName, "root");
    EXPECT_EQ(solve.featureRoot.positions[2], 11);
    EXPECT_EQ(solve.assets[0].layer, "A");
    EXPECT_EQ(solve.assets[1].pose.scales[0], 4);
}

TEST(SolveFile, WhatIsDefaultIsNotWritten)
{
    SolveBuilder builder;
    builder.solve().camera.focalLength.value = 35;
    builder.solve().scene = {{}, {0, 0, 0}, {0, 0, 0}, {1}};
    QByteArray const text = writeProject(builder.model);
    EXPECT_TRUE(text.contains("\"solve\": {\n    \"camera\": {\n      \"positions\": [0, 0, 0]\n    }\n  }"))
        << text.constData();
}

class SolveRefused : public testing::TestWithParam<Refusal>
{
};

TEST_P(SolveRefused, WithPathAndCauseInOneLine)
{
    expectRefused(fullSolve(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(
    Table, SolveRefused,
    testing::Values(
        Refusal{"\"name\": \"car\", \"moving\": true", "\"name\": \"car\", \"moving\": false", "$.groups[1].pose",
                "\"moving\""},
        Refusal{"\"group\": \"car\", \"moving\": true", "\"group\": \"car\"", "$.layers[0].pose", "pose with keys"},
        Refusal{"[0, 0, 0, 0, 90, 0]", "[0, 0, 0]", "$.groups[1].pose.rotations", "expected 6 numbers, found 3"},
        Refusal{"[1, 2] }", "[1, 0] }", "$.groups[1].pose.scales", "out of range"},
        Refusal{"\"firstFrame\": 2", "\"firstFrame\": 19", "$.groups[1].pose.positions", "don't fit"},
        Refusal{"\"frames\": [0, 4]", "\"frames\": [0, 5]", "$.layers[0].pose.frames", "0 to 4"},
        Refusal{"[1, 2, 3, 4, 5, 6.5]", "[1, 2, 3, 4]", "$.layers[0].pose.positions", "three for each frame"},
        Refusal{"[0, 0, 8]", "[0, 0, 8, 0, 0, 9]", "$.layers[1].pose.positions", "expected 3 numbers, found 6"},
        Refusal{"\"names\": [\"a\", ", "\"names\": [", "$.layers[0].surfacePoints.names", "2 names for 3 points"},
        Refusal{"\"names\": [\"a\"", "\"names\": [\"\"", "$.layers[0].surfacePoints.names[0]", "empty"},
        Refusal{"[0, 2]", "[0, 3]", "$.layers[0].surfacePoints.inaccurate", "0 to 2"},
        Refusal{"[0, 2]", "[2, 0]", "$.layers[0].surfacePoints.inaccurate", "ascend"},
        Refusal{"[0, 1, 2]", "[0, 1, 3]", "$.layers[0].surfacePoints.faceIndices", "element 2 is 3"},
        Refusal{"[0, 1, 2]", "[0, 1]", "$.layers[0].surfacePoints.faceIndices", "2 indices for faces that have 3"},
        Refusal{"\"faceCounts\": [3], ", "", "$.layers[0].surfacePoints", "\"faceCounts\" is missing"},
        Refusal{"\"faceCounts\": [3]", "\"faceCounts\": [2]", "$.layers[0].surfacePoints.faceCounts", "element 0 is 2"},
        Refusal{"[0, 0, 1, 0, 0, 1]", "[0, 0, 1]", "$.layers[0].surfacePoints.uvs", "expected 6"},
        Refusal{"[0, 0, 0, 7, 0, 0]", "[0, 0, 0]", "$.layers[0].meshPoints.positions", "each of 2 frames"},
        Refusal{"\"frames\": [1, 3]", "\"frames\": []", "$.layers[0].meshPoints.frames", "no frames"},
        Refusal{"\"values\": [20, 40]", "\"values\": [20, 10001]", "$.solve.camera.focalLength.values", "0.1 to 10000"},
        Refusal{"24.9", "0.09", "$.solve.camera.filmBackWidth", "out of range"},
        Refusal{"\"converged\"", "\"toed\"", "$.solve.stereo.mode", "toed"},
        Refusal{"\"converged\"", "\"parallel\"", "$.solve.stereo.convergence", "parallel rig"},
        Refusal{"\"separation\": 0.06,", "", "$.solve.stereo", "\"separation\" is missing"},
        Refusal{"\"views\": [\"left\", \"right\"],", "", "$.solve.stereo", "two views"},
        Refusal{"\"scales\": [2.5]", "\"scales\": [1, 2]", "$.solve.scene.scales", "expected 1"},
        Refusal{"[0, 91, 0]", "[0, 1e999, 0]", "$.solve.scene.rotations[1]", "line 23"},
        Refusal{"\"referenceFrame\": 3", "\"referenceFrame\": 20", "$.solve.referenceFrame", "out of range"},
        Refusal{"\"name\": \"wall\"", "\"name\": \"paint\"", "$.solve.features[1].name", "taken"},
        Refusal{"\"name\": \"paint\", \"layer\": \"A\"", "\"name\": \"paint\", \"layer\": \"C\"",
                "$.solve.features[1].layer", "no layer \"C\""},
        Refusal{"car.abc\", \"layer\": \"A\"", "car.abc\", \"layer\": \"C\"", "$.solve.assets[0].layer", "no layer"},
        Refusal{"\"/m/car.abc\"", "\"\"", "$.solve.assets[0].path", "empty"},
        Refusal{"\"positions\": [1, 2, 33], ", "", "$.solve.assets[1]", "\"positions\" is missing"},
        Refusal{"\"name\": \"root\"", "\"frames\": [0]", "$.solve.featureRoot.frames", "unknown key"}));

}
