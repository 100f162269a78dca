#include "KestreliaPoses.h"

#include "Host/Rig3D.h"
#include "mtx/SFMEulerAngles.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

// The rows of a pose are the columns of a matrix that acts on column vectors.
KestreliaLib::Pose kestreliaPose(Sabrel::Vector3 const& position, Sabrel::Vector3 const& rotation,
                                 Sabrel::Vector3 const& scale, int order)
{
    using namespace SFMEulerAngles;
    Sabrel::Matrix33 const matrix = eul_to_matrix(eul_to_radians(eul_pack(rotation.x, rotation.y, rotation.z, order)));
    double const factors[] = {scale.x, scale.y, scale.z};
    KestreliaLib::Pose pose;
    for (int axis = 0; axis < 3; ++axis)
    {
        for (int component = 0; component < 3; ++component)
        {
            // Adding zero takes the sign off a negative one.
            pose.axes[static_cast<std::size_t>(3 * axis + component)] = factors[axis] * matrix(component, axis) + 0.0;
        }
    }
    pose.position = kestreliaPoint(position);
    return pose;
}

KestreliaLib::Vector3 kestreliaPoint(Sabrel::Vector3 const& point)
{
    return {point.x + 0.0, point.y + 0.0, point.z + 0.0};
}

bool isFinite(double number)
{
    return std::isfinite(number);
}

bool isFinite(KestreliaLib::Vector2 const& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y);
}

bool isFinite(KestreliaLib::Vector3 const& point)
{
    return std::isfinite(point.x) && std::isfinite(point.y) && std::isfinite(point.z);
}

bool isFinite(KestreliaLib::Pose const& pose)
{
    return isFinite(pose.position) &&
           std::all_of(pose.axes.begin(), pose.axes.end(), [](double number) { return std::isfinite(number); });
}

bool isFinite(KestreliaLib::Lens const& lens)
{
    return std::isfinite(lens.focalLength) && std::isfinite(lens.shift);
}

bool isFinite(std::vector<KestreliaLib::Vector3> const& points)
{
    return std::all_of(points.begin(), points.end(),
                       [](KestreliaLib::Vector3 const& point) { return isFinite(point); });
}

}

namespace Rig3D
{

KestreliaLib::Pose toKestreliaPose(Sabrel::Vector3 const& position, Sabrel::Vector3 const& rotation,
                                   Sabrel::Vector3 const& scale)
{
    constexpr int STATIC_XYZ = 0;
    return MarloHost::kestreliaPose(position, rotation, scale, STATIC_XYZ);
}

}
