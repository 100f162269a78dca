// From plain records back to the text of a project file. Keys that hold their
// default are left out, so that a small project stays small.

#include "marlohost/ProjectFile.h"
#include "ProjectWriting.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

void writeLens(JsonText& json, LensModel const& lens)
{
    json.open("lens", '{');
    writeKeyed(json, "focalLength", lens.focalLength, 1);
    writeKeyed(json, "centreX", lens.centreX, 0);
    writeKeyed(json, "centreY", lens.centreY, 0);
    writeKeyed(json, "radial1", lens.radial[0], 0);
    writeKeyed(json, "radial2", lens.radial[1], 0);
    writeKeyed(json, "radial3", lens.radial[2], 0);
    writeKeyed(json, "tangential1", lens.tangential[0], 0);
    writeKeyed(json, "tangential2", lens.tangential[1], 0);
    writeKeyed(json, "squeeze", lens.squeeze, 1);
    json.close('}');
}

void writeFootage(JsonText& json, FootageModel const& footage)
{
    if (footage.kind == FootageModel::Solid)
    {
        return;
    }
    json.open("footage", '{');
    if (footage.kind == FootageModel::Movie)
    {
        json.string("kind", QStringLiteral("movie"));
        json.string("file", footage.file);
    }
    else
    {
        json.string("kind", QStringLiteral("sequence"));
        json.string("directory", footage.directory);
        writeName(json, "prefix", footage.prefix);
        writeName(json, "suffix", footage.suffix);
        json.number("indexWidth", footage.indexWidth);
        json.number("firstIndex", footage.firstIndex);
    }
    json.close('}');
}

void writeFilmBack(JsonText& json, std::optional<FilmBackModel> const& filmBack)
{
    if (filmBack)
    {
        json.open("filmBack", '{');
        json.number("width", filmBack->width);
        json.number("height", filmBack->height);
        json.close('}');
    }
}

void writeClip(JsonText& json, ClipModel const& clip)
{
    json.open(nullptr, '{');
    json.string("name", clip.name);
    json.number("width", clip.width);
    json.number("height", clip.height);
    if (clip.pixelAspect != 1.0)
    {
        json.number("pixelAspect", clip.pixelAspect);
    }
    json.number("frameCount", clip.frameCount);
    if (clip.frameOffset != 0)
    {
        json.number("frameOffset", clip.frameOffset);
    }
    writeFlag(json, "interlaced", clip.interlaced);
    writeFlag(json, "lowerFieldFirst", clip.lowerFieldFirst);
    writeOptional(json, "pulldown", clip.pulldown);
    writeFootage(json, clip.footage);
    writeFilmBack(json, clip.filmBack);
    if (clip.lens)
    {
        writeLens(json, *clip.lens);
    }
    json.close('}');
}

void writeGroup(JsonText& json, GroupModel const& group)
{
    json.open(nullptr, '{');
    json.string("name", group.name);
    writeName(json, "parent", group.parent);
    writeFlag(json, "hidden", group.hidden);
    writeFlag(json, "selected", group.selected);
    writeFlag(json, "moving", group.moving);
    writeGroupObject(json, group);
    json.close('}');
}

void writeTrack(JsonText& json, TrackModel const& track)
{
    json.open(nullptr, '{');
    writeName(json, "view", track.view);
    writeFrames(json, track.frames);
    json.numbers("homographies", track.homographies, 9);
    json.close('}');
}

void writeStabilize(JsonText& json, StabilizeModel const& stabilize)
{
    if (!stabilize.rangeStart && !stabilize.rangeEnd && stabilize.fixedFrames.empty())
    {
        return;
    }
    json.open("stabilize", '{');
    writeOptional(json, "rangeStart", stabilize.rangeStart);
    writeOptional(json, "rangeEnd", stabilize.rangeEnd);
    if (!stabilize.fixedFrames.empty())
    {
        json.numbers("fixedFrames", stabilize.fixedFrames, 20);
    }
    json.close('}');
}

void writeAdjustKey(JsonText& json, AdjustKeyModel const& key)
{
    json.open(nullptr, '{');
    json.number("frame", key.frame);
    json.numbers("offsets", key.offsets, 8);
    json.close('}');
}

void writeLayer(JsonText& json, LayerModel const& layer)
{
    json.open(nullptr, '{');
    json.string("name", layer.name);
    writeName(json, "clip", layer.clip);
    writeName(json, "insertClip", layer.insertClip);
    writeName(json, "group", layer.group);
    writeOptional(json, "in", layer.inPoint);
    writeOptional(json, "out", layer.outPoint);
    writeFlag(json, "hidden", layer.hidden);
    writeFlag(json, "selected", layer.selected);
    writeFlag(json, "moving", layer.moving);
    json.open("surface", '{');
    json.number("referenceFrame", layer.referenceFrame);
    json.numbers("corners", layer.corners, 8);
    json.close('}');
    writeArray(json, "tracking", layer.tracks, writeTrack);
    writeArray(json, "adjust", layer.adjust, writeAdjustKey);
    writeStabilize(json, layer.stabilize);
    writeLayerShapes(json, layer);
    writeLayerObject(json, layer);
    json.close('}');
}

void writeRange(JsonText& json, char const* key, std::optional<int> const& first, std::optional<int> const& last,
                int lastFrame)
{
    if (first || last)
    {
        json.numbers(key, std::array<int, 2>{first.value_or(0), last.value_or(lastFrame)}, 2);
    }
}

}

QByteArray writeProject(ProjectModel const& model)
{
    JsonText json;
    json.open(nullptr, '{');
    json.number("marloProject", 1);
    json.number("frameRate", model.frameRate);
    writeArray(json, "clips", model.clips, writeClip);
    if (model.views != ProjectModel().views)
    {
        json.open("views", '[');
        for (QString const& view : model.views)
        {
            json.string(nullptr, view);
        }
        json.close(']');
    }
    writeArray(json, "groups", model.groups, writeGroup);
    if (model.currentFrame != 0)
    {
        json.number("currentFrame", model.currentFrame);
    }
    writeName(json, "currentLayer", model.currentLayer);
    writeName(json, "currentView", model.currentView);
    writeName(json, "displayClip", model.displayClip);
    int const lastFrame = model.clips.empty() ? 0 : model.clips.front().frameCount - 1;
    writeRange(json, "playback", model.playbackIn, model.playbackOut, lastFrame);
    writeRange(json, "trim", model.trimIn, model.trimOut, lastFrame);
    writeArray(json, "layers", model.layers, writeLayer);
    if (model.solve)
    {
        writeSolve(json, *model.solve);
    }
    json.close('}');
    return json.take();
}

}
