#pragma once
// Euler angles with an order code, quaternions and matrices.

#include "mtx/MtxApi.h"
#include "mtx/Sabrel.h"
#include "mtx/Vectors.h"

/// Conversions between Euler angles, quaternions and rotation matrices for all 24
/// orders, after K. Shoemake, "Euler Angle Conversion", Graphics Gems IV (1994).
///
/// An order code is `((axis * 2 + parity) * 2 + repetition) * 2 + frame`: `axis` is
/// the innermost axis (x 0, y 1, z 2), `parity` 1 where the axes go backwards, and
/// `repetition` 1 where the first axis comes again at the end; `frame` 1 turns about
/// the axes that move along. 0 is XYZ about static axes, Rz Ry Rx on column vectors;
/// 21 is XYZ about moving axes, Rx Ry Rz. The three angles stand in the order in which
/// the name lists the axes.
///
/// A packed value holds the angles in x, y, z and the order in w. A quaternion has its
/// real part in w and needn't have length 1; none may be 0.
namespace SFMEulerAngles
{

/// Throws std::range_error for an order outside of 0 to 23.
MARLO_MTX_API Mtx_Vector4 eul_pack(double first, double second, double third, int order);

/// Angles to radians or degrees; the order stays.
MARLO_MTX_API Mtx_Vector4 eul_to_radians(Mtx_Vector4 const& degrees);
MARLO_MTX_API Mtx_Vector4 eul_to_degrees(Mtx_Vector4 const& radians);

/// @param radians packed angles
/// @throws std::range_error for an order outside of 0 to 23; so do all of the following
MARLO_MTX_API Mtx_Vector4 eul_to_quat(Mtx_Vector4 const& radians);

/// Packed angles in radians. Where two axes coincide (gimbal lock) only a sum or difference
/// of the outer angles is given: the one about the axis that is applied last is that of
/// `previous`, or else 0.
///
/// @param previous packed angles of the same order; the rotation before this one in time
MARLO_MTX_API Mtx_Vector4 eul_from_quat(Mtx_Vector4 const& quaternion, int order,
                                        Mtx_Vector4 const* previous = nullptr);

MARLO_MTX_API Sabrel::Matrix33 quat_to_matrix(Mtx_Vector4 const& quaternion);

/// @param radians packed angles
MARLO_MTX_API Sabrel::Matrix33 eul_to_matrix(Mtx_Vector4 const& radians);

/// As eul_from_quat.
///
/// @param rotation a proper rotation; noise of rounding is fine
MARLO_MTX_API Mtx_Vector4 eul_from_matrix(Sabrel::Matrix33 const& rotation, int order,
                                          Mtx_Vector4 const* previous = nullptr);

/// Of the packed angles in radians that mean the same rotation, those nearest to the ones
/// before: full turns are added, and the two outer angles may turn by a half while the
/// middle one folds over. So a motion through many samples has no jumps.
MARLO_MTX_API Mtx_Vector4 eul_continued(Mtx_Vector4 const& radians, Mtx_Vector4 const& previous);

}

/// The product of two rotations as quaternions: `second` first, then `first`, when they
/// act on column vectors.
MARLO_MTX_API Mtx_Vector4 mtx_rot3D_mult_s(Mtx_Vector4 const& first, Mtx_Vector4 const& second);
