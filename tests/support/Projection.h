#pragma once
// Where the camera of a project sees a point of its solve, computed from the plain records
// and apart from the host.

#include "marlohost/ProjectModel.h"

#include <Eigen/Geometry>

#include <algorithm>
#include <cmath>

namespace Projection
{

constexpr double DEGREE = 3.14159265358979323846 / 180;

/// Static XYZ in degrees: about x first, about z last.
inline Eigen::Quaterniond turn(double x, double y, double z)
{
    using Eigen::AngleAxisd;
    using Eigen::Vector3d;
    return AngleAxisd(z * DEGREE, Vector3d::UnitZ()) * AngleAxisd(y * DEGREE, Vector3d::UnitY()) *
           AngleAxisd(x * DEGREE, Vector3d::UnitX());
}

/// A row of `width` numbers at a frame, linear between the rows of the keys.
inline Eigen::VectorXd rowAt(std::vector<double> const& rows, int width, std::vector<int> const& frames, double frame)
{
    auto const row = [&](std::size_t key)
    { return Eigen::Map<Eigen::VectorXd const>(rows.data() + key * static_cast<std::size_t>(width), width).eval(); };
    for (std::size_t key = 0; key < frames.size(); ++key)
    {
        if (frame <= frames[key])
        {
            double const span = key == 0 ? 1 : frames[key] - frames[key - 1];
            return key == 0 ? row(0) : (row(key) + (row(key - 1) - row(key)) * (frames[key] - frame) / span).eval();
        }
    }
    return row(frames.empty() ? 0 : frames.size() - 1);
}

inline double numberAt(MarloHost::KeyedNumber const& number, double frame)
{
    return number.values.empty() ? number.value : rowAt(number.values, 1, number.frames, frame)[0];
}

inline Eigen::Quaterniond turnAt(MarloHost::PoseModel const& pose, double frame)
{
    if (pose.rotations.empty())
    {
        return Eigen::Quaterniond::Identity();
    }
    auto const key = [&](std::size_t i)
    { return turn(pose.rotations[3 * i], pose.rotations[3 * i + 1], pose.rotations[3 * i + 2]); };
    std::size_t after = 0;
    while (after < pose.frames.size() && pose.frames[after] < frame)
    {
        ++after;
    }
    if (after == 0 || after == pose.frames.size())
    {
        return key(after == 0 ? 0 : after - 1);
    }
    double const along = (frame - pose.frames[after - 1]) / (pose.frames[after] - pose.frames[after - 1]);
    return key(after - 1).slerp(along, key(after));
}

inline Eigen::Affine3d poseAt(MarloHost::PoseModel const& pose, double frame)
{
    Eigen::Affine3d at = Eigen::Affine3d::Identity();
    if (!pose.positions.empty())
    {
        at.translate(Eigen::Vector3d(rowAt(pose.positions, 3, pose.frames, frame)));
    }
    at.rotate(turnAt(pose, frame));
    if (!pose.scales.empty())
    {
        at.scale(rowAt(pose.scales, 1, pose.frames, frame)[0]);
    }
    return at;
}

/// Where the layer stands in the scene, without the pose of the scene itself.
inline Eigen::Affine3d layerAt(MarloHost::ProjectModel const& project, MarloHost::LayerModel const& layer, double frame)
{
    Eigen::Affine3d at = poseAt(layer.pose, frame);
    for (QString name = layer.moving ? layer.group : QString(); !name.isEmpty();)
    {
        auto const group = std::find_if(project.groups.begin(), project.groups.end(),
                                        [&](auto const& candidate) { return candidate.name == name; });
        at = poseAt(group->pose, frame) * at;
        name = group->parent;
    }
    return at;
}

/// A point of a cloud at a frame, relative to what carries it.
inline Eigen::Vector3d pointAt(MarloHost::PointCloudModel const& cloud, int index, double frame)
{
    return rowAt(cloud.positions, 3 * cloud.pointCount(), cloud.frames, frame).segment<3>(3 * index);
}

/// @param side 0 for the camera itself, -1 for the left eye of the rig, 1 for the right one
inline Eigen::Affine3d cameraAt(MarloHost::ProjectModel const& project, double frame, int side = 0)
{
    Eigen::Affine3d at = poseAt(project.solve->camera.pose, frame);
    if (side != 0)
    {
        MarloHost::StereoModel const& rig = *project.solve->stereo;
        at.translate(Eigen::Vector3d(0.5 * side * numberAt(rig.separation, frame), 0, 0));
        at.rotate(turn(0, rig.converged ? 0.5 * side * numberAt(rig.convergence, frame) : 0, 0));
    }
    return at;
}

/// Pixels of the first clip's full frame from its lower left corner, y up, of a point in
/// the axes of a camera: x to the right, y up, -z ahead.
inline Eigen::Vector2d toPixels(MarloHost::ProjectModel const& project, Eigen::Vector3d const& inCamera,
                                double focalMillimetres)
{
    MarloHost::ClipModel const& clip = project.clips.front();
    double const clipFilm = clip.filmBack ? clip.filmBack->width : 36.0;
    double const pixels = clip.width / project.solve->camera.filmBackWidth.value_or(clipFilm) * focalMillimetres;
    double const x = pixels * inCamera.x() / -inCamera.z();
    double const y = pixels * clip.pixelAspect * inCamera.y() / -inCamera.z();
    return {0.5 * clip.width + x, 0.5 * clip.height + y};
}

/// The pixel at which the camera sees a point of the scene.
inline Eigen::Vector2d project(MarloHost::ProjectModel const& project, Eigen::Vector3d const& point, double frame,
                               int side = 0)
{
    Eigen::Affine3d const camera = cameraAt(project, frame, side);
    return toPixels(project, camera.inverse() * point, numberAt(project.solve->camera.focalLength, frame));
}

}
