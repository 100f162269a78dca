#include "mtx/Sabrel.h"

namespace Sabrel
{

Matrix33 Matrix33::diagonal(double x, double y, double z)
{
    return {{x, 0, 0, 0, y, 0, 0, 0, z}};
}

double& Matrix33::operator()(int row, int column)
{
    return m[static_cast<std::size_t>(row * 3 + column)];
}

double Matrix33::operator()(int row, int column) const
{
    return m[static_cast<std::size_t>(row * 3 + column)];
}

Matrix33 Matrix33::transposed() const
{
    return {{m[0], m[3], m[6], m[1], m[4], m[7], m[2], m[5], m[8]}};
}

bool Matrix33::operator==(Matrix33 const& other) const
{
    return m == other.m;
}

Matrix33 operator*(Matrix33 const& a, Matrix33 const& b)
{
    Matrix33 product;
    for (int row = 0; row < 3; ++row)
    {
        for (int column = 0; column < 3; ++column)
        {
            product(row, column) = a(row, 0) * b(0, column) + a(row, 1) * b(1, column) + a(row, 2) * b(2, column);
        }
    }
    return product;
}

Matrix33 operator*(double factor, Matrix33 const& matrix)
{
    Matrix33 product = matrix;
    for (double& entry : product.m)
    {
        entry *= factor;
    }
    return product;
}

Vector3 operator*(Matrix33 const& matrix, Vector3 const& v)
{
    auto const row = [&](int i) { return matrix(i, 0) * v.x + matrix(i, 1) * v.y + matrix(i, 2) * v.z; };
    return {row(0), row(1), row(2)};
}

}
