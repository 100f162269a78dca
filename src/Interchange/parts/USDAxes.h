#pragma once
// What the helper delivers of a solve, in the axes and units of a stage.

#include "Host/CameraSolveHelper.h"

namespace Export
{

/// Legacy solves come in axes of their own, with angles of the transposed rotation and with focal
/// lengths in pixels. A stage has neither: they become what solves are otherwise.
class USDAxes
{
public:
    /// @param solve set up with unit matrices; must outlive this
    explicit USDAxes(Korvane::CameraSolve::ExporterHelper const& solve);

    Sabrel::Vector3 position(Sabrel::Vector3 const& delivered) const;

    /// Degrees about static axes, x first, without jumps from one to the next.
    std::vector<Sabrel::Vector3> rotations(std::vector<Sabrel::Vector3> const& delivered) const;

    /// The pose of the scene as a whole.
    Korvane::CameraSolve::KeyframePRS sceneTransform() const;

    /// Millimetres.
    float focalLength(float delivered) const;

    /// Size of the film back as the picture is seen, in millimetres.
    double apertureWidth() const;
    double apertureHeight() const;

private:
    Korvane::CameraSolve::ExporterHelper const& m_solve;
    bool m_isLegacy;
};

}
