#pragma once
// Pinhole cameras, and the 3x3 matrices with named entries that go with them.

#include "mtx/MtxApi.h"

/// A 3x3 matrix with an entry for each row and column, acting on column vectors. The
/// default is the identity.
struct Mtx_Mat33
{
    double xx = 1.0;
    double xy = 0.0;
    double xz = 0.0;
    double yx = 0.0;
    double yy = 1.0;
    double yz = 0.0;
    double zx = 0.0;
    double zy = 0.0;
    double zz = 1.0;
};

/// A pinhole and the raster behind it, in pixels.
struct Mtx_Camera
{
    /// Vertical focal length, and the horizontal one divided by it.
    double focalLength = 1.0;
    double focalAspect = 1.0;

    /// Where the axis of the pinhole meets the picture.
    double x0 = 0.0;
    double y0 = 0.0;

    /// The last coordinate that the camera gives to points of the picture.
    double z0 = 1.0;

    /// Horizontal and vertical focal length as the camera matrix has them;
    /// mtx_camera_internalize() makes them.
    double focalX = 1.0;
    double focalY = 1.0;
};

/// Brings what is derived from the other numbers of a camera up to date.
MARLO_MTX_API void mtx_camera_internalize(Mtx_Camera& camera);

/// From directions in front of the camera to pixels of its picture; upper triangular.
/// @param camera after mtx_camera_internalize()
MARLO_MTX_API Mtx_Mat33 mtx_camera_fill_matrix_s(Mtx_Camera const& camera);

MARLO_MTX_API Mtx_Mat33 mtx_mat33_ident_s();

/// The product `left` times `matrix`.
/// @param left upper triangular; what is below its diagonal isn't looked at
MARLO_MTX_API Mtx_Mat33 mtx_mat33_lmultl33T_s(Mtx_Mat33 const& matrix, Mtx_Mat33 const& left);

/// The product `matrix` times `right`.
MARLO_MTX_API Mtx_Mat33 mtx_mat33_rmultm33_s(Mtx_Mat33 const& matrix, Mtx_Mat33 const& right);

/// The inverse; its entries aren't finite for a singular matrix.
MARLO_MTX_API Mtx_Mat33 mtx_mat33_invert_s(Mtx_Mat33 const& matrix);

MARLO_MTX_API Mtx_Mat33 mtx_mat33_divide_s(Mtx_Mat33 const& matrix, double divisor);
