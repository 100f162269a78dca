#pragma once

#include "FBX/parts/SceneContext.h"

namespace Export
{
namespace FBXParts
{

/// The layers with their points and meshes.
void buildLayers(SceneContext& context);

/// The points that the solver found.
void buildFeatures(SceneContext& context);

/// The models from files.
void buildAssets(SceneContext& context);

/// What the user must know of the names in the scene; empty for nothing.
QString renamedMessage(SceneContext const& context);

}
}
