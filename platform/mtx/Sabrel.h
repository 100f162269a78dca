#pragma once
// Geometry in three dimensions, and the piece of a Bezier curve.

#include "mtx/MtxApi.h"
#include "mtx/Vectors.h"

#include <array>

namespace Sabrel
{

/// A position, a direction, Euler angles in degrees, or a scale per axis.
struct Vector3
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
};

inline Vector3 operator+(Vector3 const& a, Vector3 const& b)
{
    return {a.x + b.x, a.y + b.y, a.z + b.z};
}

inline Vector3 operator-(Vector3 const& a, Vector3 const& b)
{
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

inline Vector3 operator*(double factor, Vector3 const& v)
{
    return {factor * v.x, factor * v.y, factor * v.z};
}

/// A 3x3 matrix, row by row, acting on column vectors. The default is the identity.
struct MARLO_MTX_API Matrix33
{
    std::array<double, 9> m{1, 0, 0, 0, 1, 0, 0, 0, 1};

    static Matrix33 diagonal(double x, double y, double z);

    double& operator()(int row, int column);
    double operator()(int row, int column) const;

    Matrix33 transposed() const;
    bool operator==(Matrix33 const& other) const;
};

MARLO_MTX_API Matrix33 operator*(Matrix33 const& a, Matrix33 const& b);
MARLO_MTX_API Matrix33 operator*(double factor, Matrix33 const& matrix);
MARLO_MTX_API Vector3 operator*(Matrix33 const& matrix, Vector3 const& v);

/// A two-component value on loan to code that is written for another vector type.
template <typename T>
struct Vector2Adapter
{
    T value;

    auto x() const
    {
        return value.x;
    }

    auto y() const
    {
        return value.y;
    }
};

/// The piece of a closed or open Bezier curve between one vertex and the next.
/// Handles are relative to the vertex they belong to.
struct BezierSpan
{
    Mtx_Vector2 start;

    /// The handle that leaves `start`.
    Mtx_Vector2 control1;

    /// The handle that arrives at the next vertex, relative to that vertex.
    Mtx_Vector2 control2;
};

}
