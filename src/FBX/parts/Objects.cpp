// Points, carriers and models: a node each, with a pyramid or a cross.

#include "FBX/parts/Objects.h"

#include "FBX/parts/Keys.h"
#include "Writing/Values.h"

#include <algorithm>
#include <stdexcept>

namespace Export
{
namespace FBXParts
{

using Korvane::CameraSolve::PointAnimData;
using Korvane::CameraSolve::PointType;
using Sabrel::Vector3;

namespace
{

constexpr double NULL_SIZE = 0.1;

/// A pyramid that stands on its tip, which is the point.
constexpr double PYRAMID_POINTS[][3] = {
    {0.0, 0.0, 0.0}, {-0.01, 0.03, -0.01}, {-0.01, 0.03, 0.01}, {0.01, 0.03, 0.01}, {0.01, 0.03, -0.01}};
constexpr int PYRAMID_FACES[][3] = {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}, {2, 1, 3}, {4, 3, 1}};

FbxNode* makePyramid(SceneContext& context, QString const& name, PointType type)
{
    QByteArray const unique = context.nodeName(name);
    FbxNode* const node = FbxNode::Create(context.scene, unique);
    FbxMesh* const mesh = FbxMesh::Create(context.scene, unique);
    mesh->InitControlPoints(static_cast<int>(std::size(PYRAMID_POINTS)));
    int index = 0;
    for (auto const& [x, y, z] : PYRAMID_POINTS)
    {
        mesh->SetControlPointAt(FbxVector4(x, y, z), index++);
    }
    FbxGeometryElementMaterial* const material = mesh->CreateElementMaterial();
    material->SetMappingMode(FbxLayerElement::eByPolygon);
    material->SetReferenceMode(FbxLayerElement::eIndexToDirect);
    for (auto const& face : PYRAMID_FACES)
    {
        mesh->BeginPolygon(0);
        for (int const corner : face)
        {
            mesh->AddPolygon(corner);
        }
        mesh->EndPolygon();
    }
    node->SetNodeAttribute(mesh);
    node->AddMaterial(materialForPointType(context, type));
    return node;
}

bool hasPlace(PointAnimData const& data)
{
    return std::any_of(data.positions.begin(), data.positions.end(),
                       [](Vector3 const& p) {
                           return areWritable(std::initializer_list<double>{p.x, p.y, p.z});
                       });
}

/// One scale stands for all when it stays the same.
std::vector<Vector3> withoutRepeats(std::vector<Vector3> const& scales)
{
    bool const isSame =
        std::all_of(scales.begin(), scales.end(),
                    [&](Vector3 const& s) { return s.x == scales[0].x && s.y == scales[0].y && s.z == scales[0].z; });
    return isSame && !scales.empty() ? std::vector<Vector3>{scales[0]} : scales;
}

FbxSurfaceLambert* makeMaterial(SceneContext const& context, char const* name, FbxDouble3 const& colour)
{
    FbxSurfaceLambert* const material = FbxSurfaceLambert::Create(context.scene, name);
    material->ShadingModel.Set("Lambert");
    material->EmissiveFactor.Set(0.0);
    material->Diffuse.Set(colour);
    return material;
}

}

FbxNode* makeNull(SceneContext& context, QString const& name)
{
    QByteArray const unique = context.nodeName(name);
    FbxNode* const node = FbxNode::Create(context.scene, unique);
    FbxNull* const null = FbxNull::Create(context.scene, unique);
    null->Look.Set(FbxNull::eCross);
    null->Size.Set(NULL_SIZE);
    node->SetNodeAttribute(null);
    return node;
}

void makeMaterials(SceneContext& context)
{
    context.surfaceMaterial = makeMaterial(context, "SurfacePointMaterial", {1.0, 0.0, 0.0});
    context.featureMaterial = makeMaterial(context, "FeaturePointMaterial", {0.0, 1.0, 0.0});
    context.meshMaterial = makeMaterial(context, "MeshPointMaterial", {0.0, 0.0, 1.0});
}

FbxSurfaceLambert* materialForPointType(SceneContext const& context, PointType type)
{
    switch (type)
    {
    case Korvane::CameraSolve::SurfacePoint:
        return context.surfaceMaterial;
    case Korvane::CameraSolve::FeaturePoint:
        return context.featureMaterial;
    case Korvane::CameraSolve::TrackMeshPoint:
        return context.meshMaterial;
    }
    throw std::logic_error("materialForPointType: unsupported point type");
}

FbxNode* buildObject(SceneContext& context, PointAnimData const& data, QString const& name, FbxNode& parent,
                     ObjectKind const& kind)
{
    if (kind.point && !hasPlace(data))
    {
        ++context.failedCount;
        return nullptr;
    }
    FbxNode* const node = kind.point ? makePyramid(context, name, *kind.point) : makeNull(context, name);
    std::vector<FbxTime> const times = context.timesOf(data.contexts);
    setVectors(context, node->LclTranslation, times, context.adjustPositions(data.positions));
    SceneContext::Adjust const adjust = kind.isCarrier ? nullptr : &FBX3DExporterBase::adjustObjectRotation;
    setVectors(context, node->LclRotation, times, context.adjustRotations(data.rotations, adjust));
    if (kind.size)
    {
        node->LclScaling.Set(FbxDouble3(*kind.size, *kind.size, *kind.size));
    }
    else
    {
        setVectors(context, node->LclScaling, times, withoutRepeats(data.scales));
    }
    parent.AddChild(node);
    return node;
}

void buildMesh(SceneContext& context, QString const& name, PointType type, FbxNode& parent)
{
    Korvane::CameraSolve::MeshAnimData const data = context.solve.meshData(type, false);
    std::vector<Vector3> const points = data.points.empty() ? std::vector<Vector3>() : data.points.front();
    if (points.empty() && data.faceCounts.empty())
    {
        return;
    }
    if (!std::all_of(points.begin(), points.end(),
                     [](Vector3 const& p) {
                         return areWritable(std::initializer_list<double>{p.x, p.y, p.z});
                     }))
    {
        ++context.failedCount;
        return;
    }

    QByteArray const unique = context.nodeName(name);
    FbxMesh* const mesh = FbxMesh::Create(context.scene, unique);
    FbxNode* const node = FbxNode::Create(context.scene, unique);
    mesh->InitControlPoints(static_cast<int>(points.size()));
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        Vector3 const origin = context.isOldSolve ? context.positionOrigin : Vector3();
        Vector3 const p = context.positionFactor * (points[i] - origin);
        mesh->SetControlPointAt(FbxVector4(p.x, p.y, p.z, 1.0), static_cast<int>(i));
    }

    FbxGeometryElementUV* const uvs = mesh->CreateElementUV(unique);
    uvs->SetMappingMode(FbxLayerElement::eByPolygonVertex);
    uvs->SetReferenceMode(FbxLayerElement::eIndexToDirect);
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        auto const uv = context.solve.pointUVByType(type, static_cast<unsigned int>(i));
        bool const isKnown = areKeyable({static_cast<double>(uv.x()), static_cast<double>(uv.y())});
        context.failedCount += isKnown ? 0 : 1;
        uvs->GetDirectArray().Add(isKnown ? FbxVector2(static_cast<double>(uv.x()), static_cast<double>(uv.y()))
                                          : FbxVector2(0.0, 0.0));
    }
    mesh->ReservePolygonCount(static_cast<int>(data.faceCounts.size()));
    mesh->ReservePolygonVertexCount(static_cast<int>(data.faceIndices.size()));
    auto index = data.faceIndices.begin();
    for (int const count : data.faceCounts)
    {
        mesh->BeginPolygon();
        for (int corner = 0; corner < count; ++corner, ++index)
        {
            mesh->AddPolygon(*index, *index);
        }
        mesh->EndPolygon();
    }
    node->SetNodeAttribute(mesh);
    parent.AddChild(node);
}

}
}
