#pragma once
// Reading models from Wavefront .obj files.

#include "Host/FileAssetMeshes.h"
#include "Host/HostApi.h"

#include <QByteArray>
#include <QString>

#include <vector>

namespace MarloHost
{

/// What a file may have at most.
struct ObjLimits
{
    static constexpr int BYTES = 268435456;
    static constexpr int VERTICES = 10000000;
};

/// The meshes of a file: one for each object ("o") that has faces, or one for all faces
/// that stand before the first object. A mesh has the vertices that its faces use, in the
/// order of the file.
///
/// Groups, materials, smoothing, normals, points and lines are passed over. Free-form
/// curves and surfaces are refused, and so is any word that isn't one of the format, a number
/// that isn't one or isn't finite, and an index of something that doesn't stand above.
///
/// @param fileName stands in error texts
/// @throws KORV_BadFile "FILE: line N: CAUSE"
MARLO_HOST_API std::vector<ZN::AssetMesh> readObj(QByteArray const& text, QString const& fileName);

}
