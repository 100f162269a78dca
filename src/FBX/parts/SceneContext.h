#pragma once
// What the parts of one export share.

#include "FBX/FBX3DExporterBase.h"
#include "Host/CameraSolveHelper.h"
#include "Host/KORV_ProjectManager.h"
#include "text/Names.h"

#include <fbxsdk.h>

#include <QByteArray>
#include <QHash>
#include <QStringList>

#include <vector>

namespace Export
{
namespace FBXParts
{

/// What the user chose.
struct Choices
{
    bool includeFeatures = true;
    bool useReferenceFrame = false;
    bool sceneAtOrigin = false;

    /// Markers of points in proportion to the scene, or of one fixed size.
    bool suggestPointSize = false;
};

struct SceneContext
{
    FBX3DExporterBase const& exporter;
    KORV_ProjectManager& project;
    Korvane::CameraSolve::ExporterHelper& solve;
    KV::NullAccuracySource const& accuracy;
    Choices choices;

    /// At which meshes are taken; may be invalid.
    Anm::Context reference;
    bool isOldSolve = false;
    bool isStereoRig = false;

    /// The whole scene hangs below it; null for an old solve, whose nodes hang on the root.
    FbxNode* sceneRootNode = nullptr;
    FbxScene* scene = nullptr;
    FbxManager* manager = nullptr;
    FbxAnimLayer* animLayer = nullptr;

    /// Of an old solve: where its camera starts.
    Sabrel::Vector3 positionOrigin{};

    /// Where the camera starts, as the host has it, in any solve.
    Sabrel::Vector3 cameraStart{};

    /// What a marker of a point that is as far off as one unit is scaled by.
    double pointScale = 1.0;

    double sceneFrameRate = 0.0;
    Anm::Time lastFrame{};
    FbxTime::EMode fbxTimeMode = FbxTime::eFrames24;

    /// One eye of a rig is exported in centimetres.
    double positionFactor = 1.0;

    FbxSurfaceLambert* surfaceMaterial = nullptr;
    FbxSurfaceLambert* featureMaterial = nullptr;
    FbxSurfaceLambert* meshMaterial = nullptr;

    /// The nodes of groups, layers and of the root of the features, made when first needed.
    QHash<ZN::Point3DParameterSet const*, FbxNode*> carriers{};

    Text::UniqueNames names{};
    QStringList messages{};

    /// Keys, points and meshes that were left out, as they have values that aren't finite.
    int failedCount = 0;

    /// What has no other parent hangs on it.
    FbxNode& top() const;

    /// The name of a new node in UTF-8, changed where it is taken.
    QByteArray nodeName(QString const& name);

    /// A position as the file has it.
    Sabrel::Vector3 adjustPosition(Sabrel::Vector3 const& position) const;
    std::vector<Sabrel::Vector3> adjustPositions(std::vector<Sabrel::Vector3> const& positions) const;

    using Adjust = Mtx_Vector4 (FBX3DExporterBase::*)(Mtx_Vector4 const&, bool, bool) const;

    /// Rotations over time as the file has them, each the triple of its rotation that is
    /// nearest to the one before.
    ///
    /// @param adjust an operation of the exporter; null keeps the angles
    std::vector<Sabrel::Vector3> adjustRotations(std::vector<Sabrel::Vector3> const& rotations, Adjust adjust) const;

    /// Where keys stand: the shown numbers, as whole frames of the file's rate.
    std::vector<FbxTime> timesOf(std::vector<Anm::Context> const& contexts) const;
    FbxTime timeOf(Anm::Time const& time) const;
};

}
}
