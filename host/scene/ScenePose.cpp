#include "ScenePose.h"

#include "marlohost/ClipLens.h"
#include "mtx/SFMEulerAngles.h"

#include <algorithm>
#include <cmath>

namespace MarloHost
{

namespace
{

/// The order of all angles in a project: about the static axes x, y, z.
constexpr int STATIC_XYZ = 0;

Sabrel::Vector3 vectorAt(std::vector<double> const& numbers, std::size_t index)
{
    return {numbers[3 * index], numbers[3 * index + 1], numbers[3 * index + 2]};
}

Mtx_Vector4 quaternionOf(Sabrel::Vector3 const& degrees)
{
    using namespace SFMEulerAngles;
    return eul_to_quat(eul_to_radians(eul_pack(degrees.x, degrees.y, degrees.z, STATIC_XYZ)));
}

// Spherical linear interpolation the shorter way round (K. Shoemake, "Animating rotation
// with quaternion curves", SIGGRAPH 1985). Nearly equal rotations go in a straight line,
// where the sines would be quotients of noise.
Mtx_Vector4 slerp(Mtx_Vector4 const& a, Mtx_Vector4 const& b, double fraction)
{
    constexpr double NEARLY_EQUAL = 1.0 - 1e-10;
    double const dot = a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w;
    double const cosine = std::abs(dot);
    double weightA = 1.0 - fraction;
    double weightB = fraction;
    if (cosine < NEARLY_EQUAL)
    {
        double const angle = std::acos(cosine);
        weightA = std::sin(weightA * angle) / std::sin(angle);
        weightB = std::sin(weightB * angle) / std::sin(angle);
    }
    if (dot < 0.0)
    {
        weightB = -weightB;
    }
    return {weightA * a.x + weightB * b.x, weightA * a.y + weightB * b.y, weightA * a.z + weightB * b.z,
            weightA * a.w + weightB * b.w};
}

}

Sabrel::Vector3 Placement::apply(Sabrel::Vector3 const& p) const
{
    return position + scale * (rotation * p);
}

Placement operator*(Placement const& outer, Placement const& inner)
{
    return {outer.rotation * inner.rotation, outer.scale * inner.scale, outer.apply(inner.position)};
}

PoseCurve::PoseCurve(PoseModel const& model) : m_model(&model)
{
    m_rotations.reserve(model.rotations.size() / 3);
    for (std::size_t i = 0; i + 2 < model.rotations.size(); i += 3)
    {
        m_rotations.push_back(quaternionOf(vectorAt(model.rotations, i / 3)));
    }
}

bool PoseCurve::isMoving() const
{
    return m_model->frames.size() > 1;
}

Placement PoseCurve::at(double frame) const
{
    Placement placement;
    auto const [first, second, fraction] = keysAround(m_model->frames, frame);
    if (!m_model->positions.empty())
    {
        Sabrel::Vector3 const a = vectorAt(m_model->positions, first);
        Sabrel::Vector3 const b = vectorAt(m_model->positions, second);
        placement.position = a + fraction * (b - a);
    }
    if (!m_rotations.empty())
    {
        placement.rotation = SFMEulerAngles::quat_to_matrix(slerp(m_rotations[first], m_rotations[second], fraction));
    }
    if (!m_model->scales.empty())
    {
        double const scale = m_model->scales[first];
        placement.scale = scale + fraction * (m_model->scales[second] - scale);
    }
    return placement;
}

PoseChain::PoseChain(ZN::Point3DParameterSet const& object, bool toScene)
{
    for (ZN::Point3DParameterSet const* link = &object; link; link = link->data().parent)
    {
        bool const isOutermost = !link->data().parent;
        if (toScene || !isOutermost || link == &object)
        {
            m_curves.emplace_back(*link->data().pose);
        }
    }
    std::reverse(m_curves.begin(), m_curves.end());
    m_reachesScene = !object.data().isCarried && (toScene || !object.data().parent);
}

bool PoseChain::isMoving() const
{
    return std::any_of(m_curves.begin(), m_curves.end(), [](PoseCurve const& curve) { return curve.isMoving(); });
}

bool PoseChain::reachesScene() const
{
    return m_reachesScene;
}

Placement PoseChain::at(double frame) const
{
    Placement placement;
    for (PoseCurve const& curve : m_curves)
    {
        placement = placement * curve.at(frame);
    }
    return placement;
}

CameraCurve::CameraCurve(ZN::Camera3DParameterSet::Data const& camera)
    : m_pose(camera.model->pose), m_rig(camera.rig), m_side(camera.side)
{
}

Placement CameraCurve::at(double frame) const
{
    Placement const middle = m_pose.at(frame);
    if (!m_rig)
    {
        return middle;
    }
    Placement eye;
    eye.position.x = m_side * 0.5 * valueAt(m_rig->separation, frame);
    if (m_rig->converged)
    {
        // A turn about y by a positive angle looks to the left, which is inwards for the right eye.
        double const degrees = m_side * 0.5 * valueAt(m_rig->convergence, frame);
        eye.rotation = SFMEulerAngles::quat_to_matrix(quaternionOf({0.0, degrees, 0.0}));
    }
    return middle * eye;
}

}
