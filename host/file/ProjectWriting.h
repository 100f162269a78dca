#pragma once
// Pieces of a project file that its writers share.

#include "JsonText.h"
#include "marlohost/ProjectModel.h"

namespace MarloHost
{

/// A number, or an object of its keys.
/// @param absent the default, which is left out
void writeKeyed(JsonText& json, char const* key, KeyedNumber const& number, double absent);

/// "firstFrame" of frames that follow on one another, else all of them as "frames".
void writeFrames(JsonText& json, std::vector<int> const& frames);

/// The keys of a layer that say what its contours and its mesh are.
void writeLayerShapes(JsonText& json, LayerModel const& layer);

/// The keys of a layer that say what it is in the 3D scene.
void writeLayerObject(JsonText& json, LayerModel const& layer);
void writeGroupObject(JsonText& json, GroupModel const& group);
void writeSolve(JsonText& json, SolveModel const& solve);

}
