// The 3D scene in a project file: what is read, what is written, what is refused.

#include "SolveBuilder.h"
#include "Refusals.h"

#include "Host/KORV_Exception.h"

#include <gtest/gtest.h>

namespace
{

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
    { "name": "A", "clip": "short", "group": "car", "moving": true, "surface": { "referenceFrame": 0, "corners": [0, 0, 9, 0, 0, 9, 9, 9] },
      "pose": { "frames": [0, 4], "positions": [1, 2, 3, 4, 5, 6.5] },
      "surfacePoints": { "positions": [0, 0, 0, 1, 0, 0, 0, 1, 0], "names": ["a", "b", "\u00fc"], "inaccurate": [0, 2],
        "faceCounts": [3], "faceIndices": [0, 1, 2], "uvs": [0, 0, 1, 0, 0, 1] },
      "meshPoints": { "frames": [1, 3], "positions": [0, 0, 0, 7, 0, 0] } },
    { "name": "B", "surface": { "referenceFrame": 0, "corners": [0, 0, 9, 0, 0, 9, 9, 9] }, "pose": { "positions": [0, 0, 8] } }
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

TEST(SolveFile, WritingLosesNothing)
{
    expectWrittenAsRead(fullSolve());
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

// As in the table of the project file: words, and limits that come from elsewhere.
TEST(SolveFile, IsRefusedWithPathAndCauseInOneLine)
{
    Refusal const table[] = {
        {"\"frames\": [0, 4]", "\"frames\": [0, 5]", "$.layers[0].pose.frames", "0 to 4"},
        {"[0, 0, 8]", "[0, 0, 8, 0, 0, 9]", "$.layers[1].pose.positions", "expected 3 numbers, found 6"},
        {"[0, 1, 2]", "[0, 1]", "$.layers[0].surfacePoints.faceIndices", "2 indices for faces that have 3"},
        {"24.9", "0.09", "$.solve.camera.filmBackWidth", "out of range"},
        {"\"views\": [\"left\", \"right\"],", "", "$.solve.stereo", "two views"},
        {"\"scales\": [2.5]", "\"scales\": [1, 2]", "$.solve.scene.scales", "expected 1"},
    };
    for (Refusal const& refusal : table)
    {
        SCOPED_TRACE(testing::Message() << refusal);
        expectRefused(fullSolve(), refusal);
    }
}

}
