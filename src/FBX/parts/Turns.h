#pragma once
// Rotations on their way into an FBX file.

#include "mtx/Vectors.h"

namespace Export
{
namespace FBXParts
{

/// The rotation whose transpose has these angles in the axes of a legacy solve, followed from
/// the inside by a turn about y.
///
/// @param euler degrees, about the static axes x, y, z; the result likewise
/// @param isOldSolve false takes the angles as they are
/// @param radians of the turn about the object's own y axis
Mtx_Vector4 turned(Mtx_Vector4 const& euler, bool isOldSolve, double radians);

}
}
