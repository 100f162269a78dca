#include "FBX/parts/Turns.h"

#include "mtx/SFMEulerAngles.h"

namespace Export
{
namespace FBXParts
{

using namespace SFMEulerAngles;

namespace
{

constexpr int STATIC_XYZ = 0;

}

Mtx_Vector4 turned(Mtx_Vector4 const& euler, bool isOldSolve, double radians)
{
    double const y = isOldSolve ? -euler.y : euler.y;
    Mtx_Vector4 quaternion = eul_to_quat(eul_to_radians(eul_pack(euler.x, y, euler.z, STATIC_XYZ)));
    if (isOldSolve)
    {
        // The conjugate but for its sign: the transposed rotation.
        quaternion.w = -quaternion.w;
    }
    Mtx_Vector4 const turn = eul_to_quat(eul_pack(0.0, radians, 0.0, STATIC_XYZ));
    return eul_to_degrees(eul_from_quat(mtx_rot3D_mult_s(quaternion, turn), STATIC_XYZ));
}

}
}
