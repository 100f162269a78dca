#include "Interchange/parts/SceneBounds.h"

#include <algorithm>

namespace Export
{

using Imath::Box3d;
using Imath::M44d;
using Imath::V3d;

M44d matrixOf(KestreliaLib::Pose const& pose, double scale)
{
    auto const& a = pose.axes;
    V3d const t = scale * vectorOf(pose.position);
    return M44d(a[0], a[1], a[2], 0.0, a[3], a[4], a[5], 0.0, a[6], a[7], a[8], 0.0, t.x, t.y, t.z, 1.0);
}

SceneBounds::SceneBounds(KestreliaLib::Scene const& scene, double scale) : m_scene(scene), m_scale(scale)
{
    if (scene.shots.empty())
    {
        return;
    }
    KestreliaLib::Shot const& shot = scene.shots.front();
    m_firstFrame = shot.firstFrame;
    m_frames.resize(static_cast<std::size_t>(shot.lastFrame - shot.firstFrame + 1));
    addTrackers(shot);
    std::for_each(scene.meshes.begin(), scene.meshes.end(), [this](KestreliaLib::Mesh const& mesh) { addMesh(mesh); });
}

void SceneBounds::addTrackers(KestreliaLib::Shot const& shot)
{
    Box3d atRest;
    for (KestreliaLib::Tracker const& tracker : shot.trackers)
    {
        if (tracker.positions.isEmpty())
        {
            continue;
        }
        auto const at = [&](int frame) { return m_scale * vectorOf(m_scene.worldPosition(tracker, frame)); };
        if (!m_scene.isMoving(tracker))
        {
            atRest.extendBy(at(m_firstFrame));
            continue;
        }
        int frame = m_firstFrame;
        for (Box3d& box : m_frames)
        {
            box.extendBy(at(frame++));
        }
    }
    std::for_each(m_frames.begin(), m_frames.end(), [&](Box3d& box) { box.extendBy(atRest); });
}

// The box of what moves with an object is turned as a whole.
void SceneBounds::addMesh(KestreliaLib::Mesh const& mesh)
{
    if (mesh.faceCounts.empty() || mesh.vertices.isEmpty())
    {
        return;
    }
    auto const boxAt = [&](int frame)
    {
        Box3d box;
        for (KestreliaLib::Vector3 const& vertex : mesh.vertices.at(frame))
        {
            box.extendBy(m_scale * vectorOf(vertex));
        }
        return box;
    };
    Box3d own = boxAt(m_firstFrame);
    int frame = m_firstFrame;
    for (Box3d& box : m_frames)
    {
        own = mesh.vertices.isMoving() ? boxAt(frame) : own;
        M44d const place = matrixOf(mesh.pose, m_scale) * matrixOf(m_scene.objectPose(mesh.object, frame), m_scale);
        box.extendBy(Imath::transform(own, place));
        ++frame;
    }
}

double SceneBounds::farthest(KestreliaLib::Shot const& shot) const
{
    double most = 0.0;
    int frame = m_firstFrame;
    for (Box3d const& box : m_frames)
    {
        V3d const eye = shot.camera && !shot.camera->poses.isEmpty()
                            ? m_scale * vectorOf(shot.camera->poses.at(frame).position)
                            : V3d(0.0);
        for (int corner = 0; corner < 8 && !box.isEmpty(); ++corner)
        {
            V3d const at(corner & 1 ? box.max.x : box.min.x, corner & 2 ? box.max.y : box.min.y,
                         corner & 4 ? box.max.z : box.min.z);
            most = std::max(most, (at - eye).length());
        }
        ++frame;
    }
    return most;
}

void SceneBounds::addScreen(std::size_t row, M44d const& matrix)
{
    m_frames[row].extendBy(Imath::transform(Box3d(V3d(-1.0, -1.0, 0.0), V3d(1.0, 1.0, 0.0)), matrix));
}

}
