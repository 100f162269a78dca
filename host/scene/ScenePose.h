#pragma once
// Where things are in the 3D scene at a frame.

#include "model/Keys.h"
#include "mtx/Sabrel.h"
#include "mtx/Vectors.h"
#include "Solve.h"

#include <vector>

namespace MarloHost
{

/// Carries a point p to `position + scale * rotation * p`.
struct Placement
{
    Sabrel::Matrix33 rotation{};
    double scale = 1.0;
    Sabrel::Vector3 position{};

    Sabrel::Vector3 apply(Sabrel::Vector3 const& p) const;
};

/// `inner` first, then `outer`.
Placement operator*(Placement const& outer, Placement const& inner);

/// A pose over time. The model must outlive it.
class PoseCurve
{
public:
    explicit PoseCurve(PoseModel const& model);

    bool isMoving() const;
    Placement at(double frame) const;

private:
    PoseModel const* m_model;

    /// The rotation of each sample as a quaternion; empty where there are none.
    std::vector<Mtx_Vector4> m_rotations;
};

/// The pose of an object and of what it hangs on, as one.
class PoseChain
{
public:
    /// @param toScene true for the place in the scene, false for that in what the outermost
    ///        thing above it carries. A thing that hangs on nothing has but one.
    PoseChain(ZN::Point3DParameterSet const& object, bool toScene);

    /// A pose that never moves: the origin.
    PoseChain() = default;

    bool isMoving() const;

    /// Whether nothing stands between it and the scene, so that what is done to the scene
    /// is done to it.
    bool reachesScene() const;
    Placement at(double frame) const;

private:
    /// From the outside in.
    std::vector<PoseCurve> m_curves;
    bool m_reachesScene = false;
};

/// The camera of a record over time, an eye of a rig where it is one.
class CameraCurve
{
public:
    explicit CameraCurve(ZN::Camera3DParameterSet::Data const& camera);

    Placement at(double frame) const;

private:
    PoseCurve m_pose;
    StereoModel const* m_rig;
    int m_side;
};

}
