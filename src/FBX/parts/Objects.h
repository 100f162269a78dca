#pragma once

#include "FBX/parts/SceneContext.h"

#include <optional>

namespace Export
{
namespace FBXParts
{

/// What an object is in the file.
struct ObjectKind
{
    /// The type of a point, which is shown as a pyramid; without one the object is a null.
    std::optional<Korvane::CameraSolve::PointType> point;

    /// Scales the pyramid of a point; without it the object has its own scale.
    std::optional<double> size;

    /// Whether other nodes hang on it.
    bool isCarrier = false;
};

/// A node with the place of an object, keyed where that moves.
///
/// @param scales of `data` are factors
/// @return null for a point that has no place which a reader could take; it is counted
FbxNode* buildObject(SceneContext& context, Korvane::CameraSolve::PointAnimData const& data, QString const& name,
                     FbxNode& parent, ObjectKind const& kind);

/// A cross.
FbxNode* makeNull(SceneContext& context, QString const& name);

/// The three materials of points.
void makeMaterials(SceneContext& context);

/// @throws std::logic_error for a type that has none
FbxSurfaceLambert* materialForPointType(SceneContext const& context, Korvane::CameraSolve::PointType type);

/// The points of a type of the current layer as a mesh, as it is at the reference frame.
/// Nothing without points and faces.
void buildMesh(SceneContext& context, QString const& name, Korvane::CameraSolve::PointType type, FbxNode& parent);

}
}
