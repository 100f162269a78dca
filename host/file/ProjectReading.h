#pragma once
// Pieces of a project file that its readers share. All of them throw KORV_BadFile with the
// place in the file.

#include "JsonReader.h"
#include "marlohost/ProjectModel.h"

#include <QSet>

namespace MarloHost
{

/// Most clips, groups, layers, feature sets and assets, each: what a program keeps of one
/// is more than the few bytes that it takes to write it.
constexpr std::size_t MAX_RECORDS = 20'000;

/// The elements of an array with no more than `most`; none when the key is absent.
JsonElements limitedElements(JsonObject const& object, char const* key, std::size_t most);

/// The required "name", not empty and not in `taken`, to which it is added.
QString uniqueName(JsonObject const& object, QSet<QString>& taken);

/// A number, or an object of keys: { "frames": [...], "values": [...] }. Leaves `number`
/// as it is when the key is absent.
void readKeyed(JsonObject const& object, char const* key, int frameCount, double least, KeyedNumber& number,
               double most = 1000);

/// The frames of `count` sets of numbers under the key `what`: "frames", or "firstFrame"
/// from which they follow on one another.
std::vector<int> readFrames(JsonObject const& object, int defaultFirst, int frameCount, std::size_t count,
                            char const* what);

/// The required "faceCounts", vertices of each face, and "faceIndices", those vertices one
/// face after another.
void readFaces(JsonObject const& object, int vertexCount, std::vector<int>& counts, std::vector<int>& indices);

/// The keys of a layer that say what its contours and its mesh are.
void readLayerShapes(JsonObject const& object, LayerModel& layer, ClipModel const& clip, QStringList const& views);

/// The keys of a layer that say what it is in the 3D scene.
void readLayerObject(JsonObject const& object, LayerModel& layer, ClipModel const& clip);
void readGroupObject(JsonObject const& object, GroupModel& group, ClipModel const& firstClip);

/// @param project with clips, views and layers
SolveModel readSolve(JsonCursor const& cursor, ProjectModel const& project);

}
