// Contours and meshes in a project file, to its text.

#include "ProjectWriting.h"

namespace MarloHost
{

namespace
{

void writeContour(JsonText& json, ContourModel const& contour)
{
    json.open(nullptr, '{');
    json.string("name", contour.name);
    if (contour.xspline)
    {
        json.string("type", QStringLiteral("xspline"));
    }
    if (contour.inImage)
    {
        json.string("space", QStringLiteral("image"));
    }
    if (!contour.closed)
    {
        json.boolean("closed", false);
    }
    if (!contour.active)
    {
        json.boolean("active", false);
    }
    if (!contour.veilML.isEmpty())
    {
        json.open("veilML", '[');
        for (QString const& view : contour.veilML)
        {
            json.string(nullptr, view);
        }
        json.close(']');
    }
    json.open("keys", '[');
    for (ContourKeyModel const& key : contour.keys)
    {
        json.open(nullptr, '{');
        json.number("frame", key.frame);
        json.numbers("points", key.points, contour.stride());
        if (!key.feather.empty())
        {
            json.numbers("feather", key.feather, contour.stride());
        }
        json.close('}');
    }
    json.close(']');
    json.close('}');
}

void writeMesh(JsonText& json, MeshModel const& mesh)
{
    json.open("mesh", '{');
    json.number("vertexCount", mesh.vertexCount);
    json.numbers("faceCounts", mesh.faceCounts, 20);
    json.numbers("faceIndices", mesh.faceIndices, 20);
    json.open("tracks", '[');
    for (MeshTrackModel const& track : mesh.tracks)
    {
        json.open(nullptr, '{');
        writeName(json, "view", track.view);
        writeFrames(json, track.frames);
        json.numbers("positions", track.positions, static_cast<std::size_t>(mesh.vertexCount) * 2);
        json.close('}');
    }
    json.close(']');
    json.close('}');
}

}

void writeLayerShapes(JsonText& json, LayerModel const& layer)
{
    writeFlag(json, "invert", layer.invert);
    if (layer.subtract)
    {
        json.string("blend", QStringLiteral("subtract"));
    }
    if (layer.colour != LayerModel().colour)
    {
        json.numbers("colour", layer.colour, 4);
    }
    if (layer.overlayColour)
    {
        json.numbers("overlayColour", *layer.overlayColour, 4);
    }
    if (!layer.contours.empty())
    {
        json.open("contours", '[');
        for (ContourModel const& contour : layer.contours)
        {
            writeContour(json, contour);
        }
        json.close(']');
    }
    if (layer.mesh)
    {
        writeMesh(json, *layer.mesh);
    }
}

}
