// Contours and meshes in project files: what is read, written back and refused.

#include "ShapeFixtures.h"
#include "Refusals.h"

#include "Host/MeshTracking.h"
#include "Host/ShapeExporter.h"

#include <set>

namespace
{

QByteArray shapeProject()
{
    return R"({
  "marloProject": 1,
  "clips": [ { "name": "plate", "width": 400, "height": 200, "frameCount": 20 } ],
  "views": ["left", "right"],
  "currentLayer": "A",
  "layers": [
    { "name": "A", "in": 2, "surface": { "corners": [0, 0, 10, 0, 0, 10, 10, 10] },
      "invert": true, "blend": "subtract", "colour": [10, 20, 30, 40], "overlayColour": [255, 0, 7, 255],
      "contours": [
        { "name": "edge %1", "keys": [
          { "frame": 3, "points": [1, 2, 0, 0, 0.5, -0.25, 101, 2, 0, 0, 0, 0],
            "feather": [0, 1, 0, 0, 1, 1, 103, 4, 0, 0, 0, 0] },
          { "frame": 9, "points": [11, 12, 0, 0, 0, 0, 111, 12, 0, 0, 0, 0] } ] },
        { "name": "spline", "type": "xspline", "space": "image", "closed": false, "active": false, "veilML": ["right"],
          "keys": [ { "frame": 0, "points": [1, 2, -1, 51, 2, 0.5, 51, 42, 1] } ] } ],
      "mesh": { "vertexCount": 4, "faceCounts": [3, 3], "faceIndices": [0, 1, 2, 2, 1, 3],
        "tracks": [
          { "firstFrame": 4, "positions": [0, 0, 8, 0, 0, 8, 8, 8, 1, 0, 9, 0, 1, 8, 9, 8] },
          { "view": "right", "frames": [5, 7], "positions": [0, 0, 8, 0, 0, 8, 8, 8, 2, 0, 9, 0, 2, 8, 9, 8] } ] } },
    { "name": "plain", "surface": { "corners": [0, 0, 10, 0, 0, 10, 10, 10] } }
  ]
})";
}

TEST(ShapeFile, EveryKeyReachesTheHost)
{
    auto const project = MarloHost::makeProject(MarloHost::readProject(shapeProject(), "shapes.json"));
    KORV_Layer const& layer = *project->currentLayer();
    Anm::View const view = Anm::View::defaultView();
    EXPECT_TRUE(layer.invert().staticValue(view));
    EXPECT_EQ(layer.blendMode().value(view), ZN_BLEND_SUBTRACT);
    EXPECT_EQ(layer.colour(), QColor(10, 20, 30, 40));
    EXPECT_EQ(layer.overlayColour(), QColor(255, 0, 7));
    ASSERT_EQ(layer.activeContours().size(), 1);
    Korvane::Contour const& contour = *layer.activeContours().front();
    EXPECT_EQ(contour.name(), "edge %1");
    EXPECT_EQ(contour.eGetType(), ZN_CONTOUR_BEZIER);
    EXPECT_TRUE(contour.isClosed());
    EXPECT_EQ(&contour.parentLayer(), &layer);
    EXPECT_FALSE(contour.exportsWhole());
    EXPECT_EQ(contour.splitForExport(project->currentFrame(), project->currentFrame(), 400, 200).count, 1);
    std::set<Anm::Frame> keys;
    layer.getLayerKeyframes(keys, view);
    EXPECT_EQ(keys, (std::set<Anm::Frame>{Anm::Frame::fromInt(3), Anm::Frame::fromInt(9)})) << "active contours only";
    ASSERT_TRUE(layer.trackMesh());
    EXPECT_EQ(layer.trackMesh()->vertices().size(), 4u);
    EXPECT_EQ(layer.trackMesh()->faceCounts(), (std::vector<int>{3, 3}));

    KORV_Layer const& plain = *layer.layerBelow();
    EXPECT_EQ(plain.blendMode().value(view), ZN_BLEND_ADD);
    EXPECT_EQ(plain.overlayColour(), QColor(255, 255, 255));
    EXPECT_FALSE(plain.trackMesh());
}

TEST(ShapeFile, WritingLosesNothingAndLeavesDefaultsOut)
{
    MarloHost::ProjectModel const model = MarloHost::readProject(shapeProject(), "shapes.json");
    QByteArray const once = MarloHost::writeProject(model);
    MarloHost::ProjectModel const again = MarloHost::readProject(once, "once.json");
    EXPECT_EQ(MarloHost::writeProject(again), once);
    MarloHost::LayerModel const& layer = again.layers[0];
    EXPECT_EQ(layer.contours[0].keys[0].feather, model.layers[0].contours[0].keys[0].feather);
    EXPECT_EQ(layer.contours[0].keys[1].points, model.layers[0].contours[0].keys[1].points);
    EXPECT_FALSE(layer.contours[1].closed || layer.contours[1].active);
    EXPECT_TRUE(layer.contours[1].xspline && layer.contours[1].inImage);
    EXPECT_FALSE(layer.contours[0].inImage);
    EXPECT_EQ(layer.contours[1].veilML, QStringList("right"));
    EXPECT_EQ(layer.mesh->tracks[1].frames, (std::vector<int>{5, 7}));
    EXPECT_EQ(layer.mesh->tracks[0].positions, model.layers[0].mesh->tracks[0].positions);
    EXPECT_EQ(layer.mesh->faceIndices, model.layers[0].mesh->faceIndices);
    for (char const* key :
         {"\"closed\"", "\"active\"", "\"type\"", "\"space\"", "\"invert\"", "\"blend\"", "\"colour\"", "\"mesh\""})
    {
        EXPECT_EQ(once.count(key), 1) << key;
    }
}

class ShapeRefused : public testing::TestWithParam<Refusal>
{
};

TEST_P(ShapeRefused, WithPathAndCauseInOneLine)
{
    expectRefused(shapeProject(), GetParam(), QStringLiteral("$.layers[0]."));
}

INSTANTIATE_TEST_SUITE_P(
    Table, ShapeRefused,
    testing::Values(Refusal{"\"subtract\"", "\"multiply\"", "blend", "\"add\" or \"subtract\""},
                    Refusal{"[10, 20, 30, 40]", "[10, 20, 30]", "colour", "expected 4 numbers"},
                    Refusal{"[10, 20, 30, 40]", "[10, 20, 30, 256]", "colour", "element 3 is 256"},
                    Refusal{"[255, 0, 7, 255]", "[0.5, 0, 7, 255]", "overlayColour", "whole numbers"},
                    Refusal{"\"edge %1\"", "\"\"", "contours[0].name", "empty"},
                    Refusal{"\"type\": \"xspline\"", "\"type\": \"nurbs\"", "contours[1].type", "found \"nurbs\""},
                    Refusal{"\"image\"", "\"screen\"", "contours[1].space", "\"plane\" or \"image\""},
                    // The surface is seen from so near that half of the picture is behind its horizon.
                    Refusal{"\"invert\": true,",
                            "\"invert\": true, \"tracking\": [{ \"homographies\": [1,0,0, 0,1,0, 0.02,0,1] }],",
                            "contours[1].keys[0]", "beyond the horizon of the layer's surface at frame 0"},
                    Refusal{"\"closed\": false", "\"opened\": true", "contours[1].opened", "unknown key"},
                    Refusal{"[\"right\"]", "[\"top\"]", "contours[1].veilML[0]", "no view \"top\""},
                    Refusal{"[\"right\"]", "[\"left\", \"left\"]", "contours[1].veilML[1]", "already"},
                    Refusal{"\"frame\": 9", "\"frame\": 3", "contours[0].keys[1].frame", "ascend"},
                    Refusal{"\"frame\": 9", "\"frame\": 20", "contours[0].keys[1].frame", "out of range"},
                    Refusal{"[11, 12, 0, 0, 0, 0, 111, 12, 0, 0, 0, 0]", "[11, 12, 0, 0, 0, 0]",
                            "contours[0].keys[1].points", "at least 2 vertices"},
                    Refusal{"[11, 12, 0, 0, 0, 0, 111, 12, 0, 0, 0, 0]", "[11, 12, 0, 0, 0, 0, 111, 12, 0, 0, 0]",
                            "contours[0].keys[1].points", "11 numbers; expected 6"},
                    Refusal{"[11, 12, 0, 0, 0, 0,", "[11, 12, 0, 0, 0, 0, 1, 1, 0, 0, 0, 0,",
                            "contours[0].keys[1].points", "3 vertices where the contour has 2"},
                    Refusal{"[0, 1, 0, 0, 1, 1,", "[0, 1, 0, 0, 1, 1, 1, 1, 0, 0, 0, 0,", "contours[0].keys[0].feather",
                            "3 vertices where the contour has 2"},
                    Refusal{"[11, 12,", "[1.1e7, 12,", "contours[0].keys[1].points", "element 0 is 1.1e+07"},
                    Refusal{"[1, 2, -1, 51, 2, 0.5, 51, 42, 1]", "[1, 2, -1, 51, 2, 0.5]", "contours[1].keys[0].points",
                            "at least 3 vertices"},
                    Refusal{"51, 2, 0.5", "51, 2, 1.5", "contours[1].keys[0].points", "element 5 is a weight of 1.5"},
                    Refusal{"[ { \"frame\": 0, \"points\": [1, 2, -1, 51, 2, 0.5, 51, 42, 1] } ]", "[]",
                            "contours[1].keys", "at least one key"},
                    Refusal{"\"vertexCount\": 4", "\"vertexCount\": 5", "mesh.tracks[0].positions",
                            "expected 10 for each frame"},
                    Refusal{"\"vertexCount\": 4", "\"vertexCount\": 2", "mesh.vertexCount", "out of range"},
                    Refusal{"[3, 3]", "[3, 2]", "mesh.faceCounts", "element 1 is 2"},
                    Refusal{"[3, 3]", "[3, 4]", "mesh.faceIndices", "6 indices for faces that have 7"},
                    Refusal{"[0, 1, 2, 2, 1, 3]", "[0, 1, 2, 2, 1, 4]", "mesh.faceIndices", "element 5 is 4"},
                    Refusal{"[0, 1, 2, 2, 1, 3]", "[0, 1, 2, 2, 1, 0.5]", "mesh.faceIndices", "element 5 is 0.5"},
                    Refusal{"\"view\": \"right\"", "\"view\": \"top\"", "mesh.tracks[1]", "no view \"top\""},
                    Refusal{"\"view\": \"right\"", "\"view\": \"left\"", "mesh.tracks[1]", "a track already"},
                    Refusal{"[5, 7]", "[7, 5]", "mesh.tracks[1].frames", "ascend"},
                    Refusal{"\"firstFrame\": 4", "\"firstFrame\": 19", "mesh.tracks[0].positions", "don't fit"},
                    Refusal{"[0, 0, 8, 0, 0, 8, 8, 8, 1,", "[0, 0, 8, 0, 0, 8, 8, -2e7, 1,", "mesh.tracks[0].positions",
                            "element 7"}));

TEST(ShapeFile, FxsSaysWhatCannotBeWritten)
{
    MarloHost::ProjectModel model = MarloHost::readProject(shapeProject(), "shapes.json");
    model.currentLayer.clear();
    model.layers[0].name = QString::fromUtf8(" a\t<\"\x01&> ");
    model.layers[0].contours[0].keys[1].points[3] = NAN;
    auto const project = MarloHost::makeProject(model);
    Korvane::GlimmersetShapeExporter const exporter;
    Korvane::ShapeExporter::Options options;
    options.layerExportMode = ZN::AllLayers;
    auto const result = exporter.exportShape(*project, "a.fxs", {}, options);
    QByteArray const text = result->value("a.fxs");
    EXPECT_EQ(result->value(Korvane::ShapeExporter::ERROR_FILENAME), "Contour \"edge %1\" isn't finite at frame 9");
    EXPECT_TRUE(text.contains("name=\" a&#9;&lt;&quot;\xEF\xBF\xBD&amp;&gt; \"")) << text.toStdString();
    EXPECT_EQ(text.count("<key "), 1);
    EXPECT_EQ(text.count("<layer "), 2);
}

}
