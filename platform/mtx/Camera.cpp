#include "mtx/Camera.h"

void mtx_camera_internalize(Mtx_Camera& camera)
{
    camera.focalX = camera.focalLength * camera.focalAspect;
    camera.focalY = camera.focalLength;
}

Mtx_Mat33 mtx_camera_fill_matrix_s(Mtx_Camera const& camera)
{
    return {camera.focalX, 0, camera.x0, 0, camera.focalY, camera.y0, 0, 0, camera.z0};
}

Mtx_Mat33 mtx_mat33_ident_s()
{
    return {};
}

Mtx_Mat33 mtx_mat33_lmultl33T_s(Mtx_Mat33 const& matrix, Mtx_Mat33 const& left)
{
    Mtx_Mat33 const upper{left.xx, left.xy, left.xz, 0, left.yy, left.yz, 0, 0, left.zz};
    return mtx_mat33_rmultm33_s(upper, matrix);
}

Mtx_Mat33 mtx_mat33_rmultm33_s(Mtx_Mat33 const& matrix, Mtx_Mat33 const& right)
{
    Mtx_Mat33 const& a = matrix;
    Mtx_Mat33 const& b = right;
    return {a.xx * b.xx + a.xy * b.yx + a.xz * b.zx, a.xx * b.xy + a.xy * b.yy + a.xz * b.zy,
            a.xx * b.xz + a.xy * b.yz + a.xz * b.zz, a.yx * b.xx + a.yy * b.yx + a.yz * b.zx,
            a.yx * b.xy + a.yy * b.yy + a.yz * b.zy, a.yx * b.xz + a.yy * b.yz + a.yz * b.zz,
            a.zx * b.xx + a.zy * b.yx + a.zz * b.zx, a.zx * b.xy + a.zy * b.yy + a.zz * b.zy,
            a.zx * b.xz + a.zy * b.yz + a.zz * b.zz};
}

// The adjugate over the determinant.
Mtx_Mat33 mtx_mat33_invert_s(Mtx_Mat33 const& matrix)
{
    Mtx_Mat33 const& m = matrix;
    Mtx_Mat33 const adjugate{m.yy * m.zz - m.yz * m.zy, m.xz * m.zy - m.xy * m.zz, m.xy * m.yz - m.xz * m.yy,
                             m.yz * m.zx - m.yx * m.zz, m.xx * m.zz - m.xz * m.zx, m.xz * m.yx - m.xx * m.yz,
                             m.yx * m.zy - m.yy * m.zx, m.xy * m.zx - m.xx * m.zy, m.xx * m.yy - m.xy * m.yx};
    return mtx_mat33_divide_s(adjugate, m.xx * adjugate.xx + m.xy * adjugate.yx + m.xz * adjugate.zx);
}

Mtx_Mat33 mtx_mat33_divide_s(Mtx_Mat33 const& matrix, double divisor)
{
    Mtx_Mat33 const& m = matrix;
    return {m.xx / divisor, m.xy / divisor, m.xz / divisor, m.yx / divisor, m.yy / divisor,
            m.yz / divisor, m.zx / divisor, m.zy / divisor, m.zz / divisor};
}
