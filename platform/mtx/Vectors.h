#pragma once
// Small vectors as plain records.

/// A point or direction in the plane.
struct Mtx_Vector2
{
    double x = 0.0;
    double y = 0.0;
};

struct Mtx_Vector2_f
{
    float x = 0.0F;
    float y = 0.0F;
};

struct Mtx_Vector3
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

/// A quaternion with w as its real part, or Euler angles with w as their order code.
struct Mtx_Vector4
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    double w = 0.0;
};

inline Mtx_Vector3 mtx_vec3_sub_s(Mtx_Vector3 const& a, Mtx_Vector3 const& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
