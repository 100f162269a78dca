// What the scene holds beside the camera: layers, features, models.

#include "FBX/parts/Contents.h"

#include "FBX/parts/Objects.h"
#include "Host/KORV_Layer.h"

#include <QFileInfo>

#include <algorithm>

namespace Export
{
namespace FBXParts
{

using Korvane::CameraSolve::PointAnimData;
using Korvane::CameraSolve::PointType;
using Sabrel::Vector3;

namespace
{

/// In the place of a layer's id, for the current feature set.
constexpr unsigned int FEATURES = 0;

constexpr ObjectKind CARRIER{std::nullopt, std::nullopt, true};
constexpr ObjectKind MODEL{};

QString listed(QStringList const& names)
{
    constexpr int MOST_NAMES = 10;
    QString const text = names.mid(0, MOST_NAMES).join(QStringLiteral(", "));
    return names.size() <= MOST_NAMES ? text : text + QStringLiteral(", ...");
}

/// The null that carries others; made when it is first asked for.
FbxNode& carrierNode(SceneContext& context, ZN::Point3DParameterSet const& object, QString const& name,
                     bool isOutermost, FbxNode& parent)
{
    auto found = context.carriers.find(&object);
    if (found == context.carriers.end())
    {
        PointAnimData const data = context.solve.collectPointData(object, isOutermost, false);
        FbxNode* const node = buildObject(context, data, Text::blanksToUnderscores(name), parent, CARRIER);
        found = context.carriers.insert(&object, node);
    }
    return **found;
}

/// The null of a layer, below that of its group when it moves in one.
FbxNode& layerNode(SceneContext& context, Korvane::LayerBase const& layer)
{
    Korvane::LayerGroup const* const group = layer.isMoving() ? layer.parentGroup(false) : nullptr;
    FbxNode& parent = group ? carrierNode(context, group->points(), group->name(), true, context.top()) : context.top();
    return carrierNode(context, layer.points(), layer.name(), !group, parent);
}

/// The points of the current layer or feature set.
void buildPoints(SceneContext& context, unsigned int layerId, FbxNode& parent)
{
    // Those of an old solve stand for themselves.
    bool const inWorld = context.isOldSolve;
    for (unsigned int const id : context.solve.pointIDsToExport(std::nullopt, false))
    {
        PointAnimData const* const data = context.solve.cachedPointAnimData(inWorld, layerId, id);
        if (data && !data->contexts.empty())
        {
            unsigned int index = id;
            PointType const type = context.solve.pointTypeFromID(index);
            buildObject(context, *data, context.solve.pointName(id, &context.accuracy), parent,
                        {type, context.pointScale, false});
        }
    }
}

/// Whether what is relative to the layer is so to the scene.
bool isAtOrigin(SceneContext const& context, Korvane::LayerBase const& layer)
{
    PointAnimData const data = context.solve.collectPointData(layer.points(), true, false);
    auto const areAll = [](std::vector<Vector3> const& samples, double value)
    {
        return std::all_of(samples.begin(), samples.end(),
                           [=](Vector3 const& v) { return v.x == value && v.y == value && v.z == value; });
    };
    return areAll(data.positions, 0.0) && areAll(data.rotations, 0.0) && areAll(data.scales, 1.0);
}

Korvane::LayerBase const* layerOf(SceneContext const& context, QString const& id)
{
    return id.isEmpty() ? nullptr : context.project.sm()->layerFromID(id).get();
}

}

void buildLayers(SceneContext& context)
{
    for (unsigned int const id : context.solve.layerIDsToExport())
    {
        boost::shared_ptr<KORV_Layer> const layer = context.project.sm()->findLayer(id, false);
        context.solve.setCurrentLayer(layer, context.reference, context.isOldSolve);
        if (context.solve.numPoints(std::nullopt) == 0)
        {
            continue;
        }
        FbxNode& parent = context.isOldSolve ? context.top() : layerNode(context, *layer);
        if (context.solve.numPoints(Korvane::CameraSolve::TrackMeshPoint) > 0)
        {
            buildMesh(context, layer->name() + QStringLiteral("_TrackMesh"), Korvane::CameraSolve::TrackMeshPoint,
                      parent);
        }
        if (context.solve.numPoints(Korvane::CameraSolve::SurfacePoint) > 0)
        {
            buildMesh(context, layer->name() + QStringLiteral("_Surface"), Korvane::CameraSolve::SurfacePoint, parent);
        }
        buildPoints(context, id, parent);
    }
    context.solve.clearParamData();
}

void buildFeatures(SceneContext& context)
{
    if (!context.choices.includeFeatures || context.isOldSolve)
    {
        return;
    }
    ZN::Scene3DParameterSet const& scene = context.project.scene3DParameters();
    for (auto const& features : scene.features())
    {
        context.solve.setCurrentFeatureSet(*features, false);
        if (context.solve.numPoints(std::nullopt) == 0)
        {
            continue;
        }
        if (Korvane::LayerBase const* const layer = layerOf(context, features->parentID()))
        {
            buildPoints(context, FEATURES, layerNode(context, *layer));
            continue;
        }
        FbxNode& root =
            carrierNode(context, scene.staticFeatureRoot(), scene.staticFeatureRootName(), true, context.top());
        FbxNode* const set = makeNull(context, features->name());
        root.AddChild(set);
        buildPoints(context, FEATURES, *set);
    }
    context.solve.clearParamData();
}

void buildAssets(SceneContext& context)
{
    QStringList strays;
    for (auto const& asset : context.solve.fileAssetsToExport())
    {
        QString const name = QFileInfo(asset->path()).baseName();
        Korvane::LayerBase const* const layer = layerOf(context, asset->parentID());
        FbxNode* const carrier = layer ? context.carriers.value(&layer->points()) : nullptr;
        if (layer && !carrier && !isAtOrigin(context, *layer))
        {
            strays += name;
        }
        buildObject(context, context.solve.collectPointData(asset->points(), true, true), name,
                    carrier ? *carrier : context.top(), MODEL);
    }
    if (!strays.isEmpty())
    {
        context.messages += FBX3DExporterBase::tr("These models stand where they would if their layers, which have "
                                                  "no points in this export, were at the origin: %1")
                                .arg(listed(strays));
    }
}

QString renamedMessage(SceneContext const& context)
{
    QStringList const& clashes = context.names.clashes();
    return clashes.isEmpty() ? QString()
                             : FBX3DExporterBase::tr("Several objects have one name, so that some got numbers: %1")
                                   .arg(listed(clashes));
}

}
}
