#pragma once
// From the scene of a solve to the axes, units and angles of an export.

#include "Host/CameraSolveHelper.h"
#include "ScenePose.h"

namespace MarloHost
{

/// What an exporter has set: the axes, the scale, what becomes of the scene's pose, and the
/// order of angles.
class SolveSpace
{
public:
    /// @param solve null for a project without one
    explicit SolveSpace(SolveModel const* solve = nullptr);

    void setCoordinateTransform(Sabrel::Matrix33 const& a, Sabrel::Matrix33 const& b, double scale,
                                Korvane::CameraSolve::SceneTransformMode mode);
    void setRotateOrder(int order);

    /// The scene's pose on top of what nothing else stands above.
    Placement inScene(Placement const& placement) const;

    /// Where something is on its way to the export: the scene's pose is in it where it
    /// belongs there.
    Placement placementOf(PoseChain const& chain, double frame) const;

    /// What positions are multiplied with.
    Sabrel::Matrix33 const& positionMatrix() const;

    /// Packed angles in radians and in the order of the export, before they get the signs
    /// of a legacy solve.
    ///
    /// @param previous those of the sample before, or null
    Mtx_Vector4 angles(Sabrel::Matrix33 const& rotation, Mtx_Vector4 const* previous) const;

    /// Such angles in degrees, as they are exported.
    Sabrel::Vector3 degrees(Mtx_Vector4 const& radians) const;

    Korvane::CameraSolve::KeyframePRS sceneTransform() const;

private:
    void update();

    SolveModel const* m_solve;
    Sabrel::Matrix33 m_a;
    Sabrel::Matrix33 m_b;
    double m_scale = 1.0;
    Korvane::CameraSolve::SceneTransformMode m_mode = Korvane::CameraSolve::SceneApplied;
    int m_order = 0;
    Placement m_scene;

    /// A legacy solve without a coordinate change comes in axes of its own.
    bool m_hasLegacyAxes = false;
    Sabrel::Matrix33 m_positionMatrix;
};

/// Turns the rotations of one thing, in the order of time, into angles without jumps, so
/// that what lies between two frames is in between for a program that interpolates.
class AngleSequence
{
public:
    explicit AngleSequence(SolveSpace const& space);

    /// Degrees.
    Sabrel::Vector3 next(Sabrel::Matrix33 const& rotation);

private:
    SolveSpace const& m_space;
    std::optional<Mtx_Vector4> m_previous;
};

}
