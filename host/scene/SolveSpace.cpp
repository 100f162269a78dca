#include "SolveSpace.h"

#include "mtx/SFMEulerAngles.h"

namespace MarloHost
{

using Korvane::CameraSolve::KeyframePRS;
using Sabrel::Matrix33;
using Sabrel::Vector3;

namespace
{

constexpr int STATIC_XYZ = 0;
constexpr int MOVING_XYZ = 21;

Vector3 degreesOf(Mtx_Vector4 const& radians)
{
    Mtx_Vector4 const degrees = SFMEulerAngles::eul_to_degrees(radians);
    return {degrees.x, degrees.y, degrees.z};
}

}

SolveSpace::SolveSpace(SolveModel const* solve) : m_solve(solve)
{
    if (solve)
    {
        m_scene = PoseCurve(solve->scene).at(0);
    }
    update();
}

void SolveSpace::setCoordinateTransform(Matrix33 const& a, Matrix33 const& b, double scale,
                                        Korvane::CameraSolve::SceneTransformMode mode)
{
    m_a = a;
    m_b = b;
    m_scale = scale == 0.0 ? 1.0 : scale;
    m_mode = mode;
    update();
}

void SolveSpace::setRotateOrder(int order)
{
    SFMEulerAngles::eul_pack(0, 0, 0, order); // refuses what isn't one
    m_order = order;
}

void SolveSpace::update()
{
    m_hasLegacyAxes = m_solve && m_solve->legacy && m_a == Matrix33() && m_b == Matrix33();
    m_positionMatrix = m_scale * (m_hasLegacyAxes ? Matrix33::diagonal(1, -1, -1) : m_a);
}

Placement SolveSpace::inScene(Placement const& placement) const
{
    return m_mode == Korvane::CameraSolve::SceneApplied ? m_scene * placement : placement;
}

Placement SolveSpace::placementOf(PoseChain const& chain, double frame) const
{
    Placement const placement = chain.at(frame);
    return chain.reachesScene() ? inScene(placement) : placement;
}

Matrix33 const& SolveSpace::positionMatrix() const
{
    return m_positionMatrix;
}

// A legacy solve delivers the angles of the transposed rotation in static order XYZ: as
// transposing turns the product about, these are the negated angles about moving axes.
Mtx_Vector4 SolveSpace::angles(Matrix33 const& rotation, Mtx_Vector4 const* previous) const
{
    bool const isLegacy = m_solve && m_solve->legacy;
    return SFMEulerAngles::eul_from_matrix(m_a * rotation * m_b, isLegacy ? MOVING_XYZ : m_order, previous);
}

Vector3 SolveSpace::degrees(Mtx_Vector4 const& radians) const
{
    Vector3 const angles = degreesOf(radians);
    return m_hasLegacyAxes ? Vector3{-angles.x, angles.y, -angles.z} : angles;
}

// Data come as P p, with P the position matrix, so a node above them that stands for the
// scene's R, s, t must carry P p to P (R s p + t): its rotation is that of P R P^-1.
KeyframePRS SolveSpace::sceneTransform() const
{
    if (m_mode != Korvane::CameraSolve::SceneApart)
    {
        return {};
    }
    Matrix33 const axes = m_hasLegacyAxes ? Matrix33::diagonal(1, -1, -1) : m_a;
    Matrix33 const rotation = axes * m_scene.rotation * axes.transposed();
    return {m_positionMatrix * m_scene.position,
            degreesOf(SFMEulerAngles::eul_from_matrix(rotation, STATIC_XYZ)),
            {m_scene.scale, m_scene.scale, m_scene.scale}};
}

AngleSequence::AngleSequence(SolveSpace const& space) : m_space(space)
{
}

Vector3 AngleSequence::next(Matrix33 const& rotation)
{
    Mtx_Vector4 const angles = m_space.angles(rotation, m_previous ? &*m_previous : nullptr);
    m_previous = m_previous ? SFMEulerAngles::eul_continued(angles, *m_previous) : angles;
    return m_space.degrees(*m_previous);
}

}
