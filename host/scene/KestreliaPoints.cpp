// Points and meshes of matchmove projects.

#include "KestreliaProject.h"

#include <algorithm>

namespace Rig3D
{

using Korvane::CameraSolve::ExporterHelper;
using Korvane::CameraSolve::MeshAnimData;
using Korvane::CameraSolve::PointAnimData;

namespace
{

// A host says of each point where it is in a texture, and zero of points that are nowhere.
std::vector<KestreliaLib::Vector2> uvsOf(ExporterHelper const& helper, Korvane::CameraSolve::PointType type,
                                         std::size_t count)
{
    std::vector<KestreliaLib::Vector2> uvs;
    uvs.reserve(count);
    for (std::size_t index = 0; index < count; ++index)
    {
        auto const uv = helper.pointUVByType(type, static_cast<unsigned int>(index));
        uvs.push_back({static_cast<double>(uv.x()), static_cast<double>(uv.y())});
    }
    bool const isNowhere =
        std::all_of(uvs.begin(), uvs.end(), [](auto const& uv) { return uv == KestreliaLib::Vector2(); });
    bool const isFinite = std::all_of(uvs.begin(), uvs.end(), [](auto const& uv) { return MarloHost::isFinite(uv); });
    return isNowhere || !isFinite ? std::vector<KestreliaLib::Vector2>() : uvs;
}

KestreliaLib::Mesh meshOf(ZN::AssetMesh const& asset)
{
    KestreliaLib::Mesh mesh;
    std::vector<KestreliaLib::Vector3> points;
    points.reserve(asset.positions.size());
    std::transform(asset.positions.begin(), asset.positions.end(), std::back_inserter(points),
                   MarloHost::kestreliaPoint);
    mesh.vertices = KestreliaLib::Samples<std::vector<KestreliaLib::Vector3>>::atRest(std::move(points));
    mesh.faceCounts = asset.faceCounts;
    mesh.faceIndices = asset.faceIndices;
    mesh.uvIndices = asset.uvIndices;
    mesh.uvs.reserve(asset.uvs.size());
    std::transform(asset.uvs.begin(), asset.uvs.end(), std::back_inserter(mesh.uvs),
                   [](Mtx_Vector2 const& uv) {
                       return KestreliaLib::Vector2{uv.x, uv.y};
                   });
    return mesh;
}

}

void KestreliaSetup::Data::addPoints(Helper const& helper, QString const& name, unsigned int object)
{
    std::vector<unsigned int> const ids = helper.pointIDsToExport(std::nullopt, false);
    if (ids.empty())
    {
        return;
    }
    unsigned int const group = addGroup(name);
    for (unsigned int const id : ids)
    {
        KestreliaLib::Tracker& tracker = addTracker(helper.pointName(id, nullptr), group);
        PointAnimData const data = helper.pointAnimData(id);
        tracker.object = object;
        tracker.positions = filling.samples<KestreliaLib::Vector3>(
            data.contexts, [&](std::size_t i) { return MarloHost::kestreliaPoint(data.positions[i]); });
    }
    addPointMeshes(helper, name, object);
}

unsigned int KestreliaSetup::Data::addGroup(QString const& name)
{
    std::vector<KestreliaLib::TrackerGroup>& groups = shot().groups;
    groups.push_back({static_cast<unsigned int>(groups.size()) + 1, name.toStdString()});
    return groups.back().id;
}

KestreliaLib::Tracker& KestreliaSetup::Data::addTracker(QString const& name, unsigned int group)
{
    KestreliaLib::Tracker& tracker = shot().trackers.emplace_back();
    tracker.id = nextTracker++;
    tracker.name = name.toStdString();
    tracker.group = group;
    return tracker;
}

void KestreliaSetup::Data::addPointMeshes(Helper const& helper, QString const& name, unsigned int object)
{
    using namespace Korvane::CameraSolve;
    for (PointType const type : {SurfacePoint, TrackMeshPoint, FeaturePoint})
    {
        if (helper.numPoints(type) == 0)
        {
            continue;
        }
        MeshAnimData const data = helper.meshData(type, true);
        if (data.faceCounts.empty())
        {
            continue;
        }
        KestreliaLib::Mesh mesh;
        mesh.id = scene.freeMeshId();
        mesh.name = name.toStdString();
        mesh.object = object;
        mesh.vertices = filling.samples<std::vector<KestreliaLib::Vector3>>(
            data.contexts,
            [&](std::size_t i)
            {
                std::vector<KestreliaLib::Vector3> row;
                row.reserve(data.points[i].size());
                std::transform(data.points[i].begin(), data.points[i].end(), std::back_inserter(row),
                               MarloHost::kestreliaPoint);
                return row;
            });
        if (mesh.vertices.isEmpty())
        {
            continue;
        }
        mesh.faceCounts = data.faceCounts;
        mesh.faceIndices = data.faceIndices;
        mesh.uvs = uvsOf(helper, type, helper.numPoints(type));
        scene.meshes.push_back(std::move(mesh));
    }
}

void KestreliaSetup::addModel(PointAnimData const& place, std::vector<ZN::AssetMesh> const& meshes, QString const& name,
                              QString const& parentId)
{
    KestreliaLib::Pose pose;
    if (!place.positions.empty())
    {
        pose = MarloHost::kestreliaPose(place.positions.front(), place.rotations.front(), place.scales.front(),
                                        MarloHost::KESTRELIA_ORDER);
    }
    if (!MarloHost::isFinite(pose))
    {
        m_data->filling.leaveOut();
        return;
    }
    unsigned int id = m_data->scene.freeMeshId();
    for (ZN::AssetMesh const& asset : meshes)
    {
        KestreliaLib::Mesh mesh = meshOf(asset);
        mesh.id = id++;
        mesh.name = (asset.name.isEmpty() ? name : asset.name).toStdString();
        mesh.object = m_data->objectOf(parentId);
        mesh.pose = pose;
        m_data->scene.meshes.push_back(std::move(mesh));
    }
}

}
