#include "Interchange/parts/USDAxes.h"

#include "Host/ZN_ClipInfo.h"
#include "mtx/SFMEulerAngles.h"

#include <optional>

namespace Export
{

using Korvane::CameraSolve::KeyframePRS;
using Sabrel::Vector3;

namespace
{

constexpr int STATIC_XYZ = 0;
constexpr int MOVING_XYZ = 21;

}

USDAxes::USDAxes(Korvane::CameraSolve::ExporterHelper const& solve) : m_solve(solve), m_isLegacy(solve.isOldSolveData())
{
}

Vector3 USDAxes::position(Vector3 const& delivered) const
{
    return m_isLegacy ? Vector3{delivered.x, -delivered.y, -delivered.z} : delivered;
}

// Delivered are (ex, -ey, ez) of the transposed rotation about static axes. Transposing turns the
// product about, so the rotation itself has (-ex, -ey, -ez) about moving axes.
std::vector<Vector3> USDAxes::rotations(std::vector<Vector3> const& delivered) const
{
    using namespace SFMEulerAngles;
    if (!m_isLegacy)
    {
        return delivered;
    }
    std::vector<Vector3> result;
    result.reserve(delivered.size());
    std::optional<Mtx_Vector4> previous;
    for (Vector3 const& angles : delivered)
    {
        Sabrel::Matrix33 const rotation =
            eul_to_matrix(eul_to_radians(eul_pack(-angles.x, angles.y, -angles.z, MOVING_XYZ)));
        Mtx_Vector4 const radians = eul_from_matrix(rotation, STATIC_XYZ, previous ? &*previous : nullptr);
        previous = previous ? eul_continued(radians, *previous) : radians;
        Mtx_Vector4 const degrees = eul_to_degrees(*previous);
        result.push_back({degrees.x, degrees.y, degrees.z});
    }
    return result;
}

// Half a turn about x lies between the axes of the two. It carries a turn about y or z to the
// opposite one.
KeyframePRS USDAxes::sceneTransform() const
{
    KeyframePRS pose = m_solve.sceneTransformForExport();
    pose.position = position(pose.position);
    pose.rotation = position(pose.rotation);
    return pose;
}

float USDAxes::focalLength(float delivered) const
{
    if (!m_isLegacy)
    {
        return delivered;
    }
    double const pixelsPerMillimetre = m_solve.baseClipInfo()->format().size().height() / apertureHeight();
    return static_cast<float>(delivered / pixelsPerMillimetre);
}

double USDAxes::apertureWidth() const
{
    return m_solve.filmBack().x * m_solve.baseClipInfo()->format().par();
}

double USDAxes::apertureHeight() const
{
    return m_solve.filmBack().y;
}

}
