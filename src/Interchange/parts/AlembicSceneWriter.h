#pragma once
// Scenes of matchmove projects as Alembic archives.

#include "kestrelia/Scene.h"

#include <QByteArray>
#include <QStringList>

namespace Export
{

/// Writes a scene: transforms, cameras, trackers that were solved, meshes that have faces.
///
/// @param scale times every length
/// @param messages gets what the user must know, one line each
/// @throws KORV_ExternalException with the library's words when it refuses something
/// @throws KORV_OperationFailed when the file would be larger than one can be
QByteArray writeAlembicScene(KestreliaLib::Scene const& scene, double scale, QStringList& messages);

}
