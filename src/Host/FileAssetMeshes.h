#pragma once
// The meshes of models that came from files.

#include "Host/HostApi.h"
#include "Host/Scene3D.h"
#include "mtx/Sabrel.h"

#include <QString>

#include <vector>

class KORV_ProjectManager;

namespace ZN
{

/// One mesh of a model's file, in the file's own numbers: they are in the space of the
/// asset's points().
struct AssetMesh
{
    /// As the file has it; may be empty, and two may have one name.
    QString name;
    std::vector<Sabrel::Vector3> positions;

    /// Vertices per face, at least three, and the vertices of all faces one after another,
    /// counter-clockwise as seen from the front.
    std::vector<int> faceCounts;
    std::vector<int> faceIndices;

    /// Places in a texture, 0 to 1, v up, and which of them belongs to each entry of
    /// `faceIndices`. Both empty where a face of the mesh has none.
    std::vector<Mtx_Vector2> uvs;
    std::vector<int> uvIndices;
};

/// What a model's file holds, or why it can't be told.
struct AssetMeshes
{
    std::vector<AssetMesh> meshes;

    /// One line for the user; empty when the file was read.
    QString failure;
};

/// Reads the file of a model: Wavefront .obj. A relative path starts at the folder of the
/// project file. Never throws for what the file holds or doesn't.
MARLO_HOST_API AssetMeshes readAssetMeshes(FileAsset3DParameterSet const& asset, KORV_ProjectManager const& project);

}
