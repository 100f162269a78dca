// What stands in a scene: layers with their points and meshes, features, models.

#include "Interchange/parts/USDSceneWriter.h"

#include "Interchange/parts/USDValues.h"

#include <QFileInfo>
#include <pxr/base/vt/array.h>
#include <pxr/base/vt/value.h>
#include <pxr/usd/sdf/changeBlock.h>
#include <pxr/usd/sdf/layer.h>
#include <pxr/usd/sdf/primSpec.h>
#include <pxr/usd/usd/schemaRegistry.h>
#include <pxr/usd/usdGeom/primvarsAPI.h>
#include <pxr/usd/usdGeom/tokens.h>
#include <pxr/usd/usdGeom/xform.h>

PXR_NAMESPACE_USING_DIRECTIVE

namespace Export
{

using Korvane::CameraSolve::MeshAnimData;
using Korvane::CameraSolve::PointAnimData;
using Sabrel::Vector3;

namespace
{

constexpr char MESH_SUFFIX[] = "_TrackMesh";
constexpr char UV_PRIMVAR[] = "st";

VtIntArray toArray(std::vector<int> const& values)
{
    VtIntArray array;
    array.reserve(values.size());
    for (int const value : values)
    {
        array.push_back(value);
    }
    return array;
}

}

template <typename Carried>
Korvane::LayerBase const* USDSceneWriter::parentOf(Carried const& carried) const
{
    return carried.parentID().isEmpty() ? nullptr : m_project.sm()->layerFromID(carried.parentID()).get();
}

void USDSceneWriter::writeLayers()
{
    for (unsigned int const id : m_solve.layerIDsToExport())
    {
        boost::shared_ptr<KORV_Layer> const layer = m_project.sm()->findLayer(id, false);
        m_solve.setCurrentLayer(layer, m_choice.reference, false);
        if (m_solve.numPoints(std::nullopt) == 0)
        {
            continue;
        }
        Path const path = layerPath(*layer);
        if (m_solve.numPoints(Korvane::CameraSolve::TrackMeshPoint) > 0)
        {
            writeMesh(path, primName(layer->name()) + QLatin1String(MESH_SUFFIX));
        }
        writePoints(path);
    }
}

// Sets without a layer move with a root of their own.
void USDSceneWriter::writeFeatures()
{
    bool hasRoot = false;
    for (auto const& features : m_scene.features())
    {
        m_solve.setCurrentFeatureSet(*features, false);
        if (m_solve.numPoints(std::nullopt) == 0)
        {
            continue;
        }
        Korvane::LayerBase const* const layer = parentOf(*features);
        if (!layer && !hasRoot)
        {
            hasRoot = true;
            UsdGeomXform const root = UsdGeomXform::Define(m_graph.stagePtr(), m_featuresPath);
            writePose(Placer(root), m_solve.collectPointData(m_scene.staticFeatureRoot(), true, false));
        }
        Path const path = m_paths.take(layer ? layerPath(*layer) : m_featuresPath, primName(features->name()));
        UsdGeomXform::Define(m_graph.stagePtr(), path);
        writePoints(path);
    }
}

// A model's name loses its digits, unless it is they that tell it from another's.
void USDSceneWriter::writeAssets()
{
    struct Asset
    {
        ZN::FileAsset3DParameterSet const* parameters;
        Path parent;
        QString baseName;
    };
    std::vector<Asset> assets;
    QHash<QString, int> countByName;
    auto const keyOf = [](Asset const& asset) {
        return QString::fromStdString(asset.parent.GetString()) + QLatin1Char('/') +
               primNameWithoutDigits(asset.baseName);
    };
    for (auto const& parameters : m_solve.fileAssetsToExport())
    {
        Korvane::LayerBase const* const layer = parentOf(*parameters);
        assets.push_back({parameters.get(), layer ? layerPath(*layer) : m_graph.rootPath(),
                          QFileInfo(parameters->path()).baseName()});
        ++countByName[keyOf(assets.back())];
    }
    for (Asset const& asset : assets)
    {
        QString const name = primNameWithoutDigits(asset.baseName);
        bool const isTaken = countByName.value(keyOf(asset)) > 1 || m_paths.holds(asset.parent, name);
        writeAsset(*asset.parameters, asset.parent, isTaken ? primName(asset.baseName) : name);
    }
}

void USDSceneWriter::writeAsset(ZN::FileAsset3DParameterSet const& asset, Path const& parent, QString const& name)
{
    UsdGeomXform const prim = UsdGeomXform::Define(m_graph.stagePtr(), m_paths.take(parent, name));
    writePose(Placer(prim), m_solve.collectPointData(asset.points(), true, true));
}

USDSceneWriter::Path USDSceneWriter::layerPath(Korvane::LayerBase const& layer)
{
    auto const known = m_objects.constFind(&layer);
    if (known != m_objects.constEnd())
    {
        return Path(*known);
    }
    Korvane::LayerGroup const* const group = layer.isMoving() ? layer.parentGroup(false) : nullptr;
    Path parent = m_graph.rootPath();
    if (group)
    {
        auto const knownGroup = m_objects.constFind(group);
        parent = knownGroup != m_objects.constEnd() ? Path(*knownGroup)
                                                    : makeObject(parent, group->name(), group->points(), true);
        m_objects.insert(group, parent.GetString());
    }
    Path const path = makeObject(parent, layer.name(), layer.points(), !group);
    m_objects.insert(&layer, path.GetString());
    return path;
}

USDSceneWriter::Path USDSceneWriter::makeObject(Path const& parent, QString const& name,
                                                ZN::Point3DParameterSet const& object, bool worldSpace)
{
    Path const path = m_paths.take(parent, primName(name));
    UsdGeomXform const prim = UsdGeomXform::Define(m_graph.stagePtr(), path);
    writePose(Placer(prim), m_solve.collectPointData(object, worldSpace, false));
    return path;
}

// All prims are made first, in one block, so that the stage takes notice of them once. What is
// made in the block can't be got from the stage before it closes.
void USDSceneWriter::writePoints(Path const& parent)
{
    std::vector<unsigned int> const ids = m_solve.pointIDsToExport(std::nullopt, false);
    std::vector<Path> paths;
    paths.reserve(ids.size());
    std::string const type = UsdSchemaRegistry::GetSchemaTypeName<UsdGeomXform>().GetString();
    {
        SdfChangeBlock const block;
        SdfLayerHandle const layer = m_graph.stage().GetRootLayer();
        for (unsigned int const id : ids)
        {
            paths.push_back(m_paths.take(parent, primName(m_solve.pointName(id, nullptr))));
            SdfPrimSpecHandle const spec = SdfCreatePrimInLayer(layer, paths.back());
            spec->SetSpecifier(SdfSpecifierDef);
            spec->SetTypeName(type);
        }
    }
    for (std::size_t i = 0; i < ids.size(); ++i)
    {
        writePoint(Placer(m_graph.stage().GetPrimAtPath(paths[i])), m_solve.pointAnimData(ids[i]));
    }
}

void USDSceneWriter::writePoint(Placer const& placer, PointAnimData const& data)
{
    for (std::size_t i = 0; i < data.contexts.size(); ++i)
    {
        GfVec3d const position = toDoubles(m_axes.position(data.positions.at(i)));
        if (!isWritableVector(position))
        {
            ++m_failedCount;
            continue;
        }
        placer.SetTranslate(position, timeOf(data.contexts, i));
    }
    placer.SetScale(GfVec3f(m_pointScale, m_pointScale, m_pointScale));
}

void USDSceneWriter::writeMesh(Path const& parent, QString const& name)
{
    UsdGeomMesh const mesh = UsdGeomMesh::Define(m_graph.stagePtr(), m_paths.take(parent, name));
    MeshAnimData const data = m_solve.meshData(Korvane::CameraSolve::TrackMeshPoint, true);
    writeMeshPoints(mesh, data);
    mesh.CreateFaceVertexCountsAttr(VtValue(toArray(data.faceCounts)));
    mesh.CreateFaceVertexIndicesAttr(VtValue(toArray(data.faceIndices)));
    // Corners stay where they were tracked.
    mesh.CreateSubdivisionSchemeAttr(VtValue(UsdGeomTokens->none));
    writeUVs(mesh, data.faceIndices);
}

void USDSceneWriter::writeMeshPoints(UsdGeomMesh const& mesh, MeshAnimData const& data)
{
    UsdAttribute const points = mesh.CreatePointsAttr();
    UsdAttribute const extents = mesh.CreateExtentAttr();
    for (std::size_t i = 0; i < data.contexts.size(); ++i)
    {
        VtVec3fArray row;
        row.reserve(data.points.at(i).size());
        bool areAllWritable = true;
        for (Vector3 const& point : data.points.at(i))
        {
            row.push_back(toFloats(m_axes.position(point)));
            areAllWritable = areAllWritable && isWritable(point.x) && isWritable(point.y) && isWritable(point.z);
        }
        VtVec3fArray extent;
        if (!areAllWritable || !UsdGeomPointBased::ComputeExtent(row, &extent) || !isWritableVector(extent[0]) ||
            !isWritableVector(extent[1]))
        {
            ++m_failedCount;
            continue;
        }
        UsdTimeCode const time = timeOf(data.contexts, i);
        extents.Set(extent, time);
        if (!points.Set(row, time))
        {
            m_failures += QStringLiteral("Failed to set points attribute");
        }
    }
}

void USDSceneWriter::writeUVs(UsdGeomMesh const& mesh, std::vector<int> const& faceIndices)
{
    VtVec2fArray uvs;
    uvs.reserve(faceIndices.size());
    bool hasAny = false;
    for (int const index : faceIndices)
    {
        auto const uv = m_solve.pointUVByType(Korvane::CameraSolve::TrackMeshPoint, static_cast<unsigned int>(index));
        if (!isWritable(static_cast<double>(uv.x())) || !isWritable(static_cast<double>(uv.y())))
        {
            ++m_failedCount;
            return;
        }
        hasAny = hasAny || uv.x() != 0.0F || uv.y() != 0.0F;
        uvs.push_back(GfVec2f(uv.x(), uv.y()));
    }
    if (hasAny)
    {
        UsdGeomPrimvarsAPI(mesh)
            .CreatePrimvar(TfToken(UV_PRIMVAR), SdfValueTypeNames->TexCoord2fArray, UsdGeomTokens->faceVarying)
            .Set(uvs);
    }
}

}
