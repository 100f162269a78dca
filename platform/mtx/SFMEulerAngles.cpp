#include "mtx/SFMEulerAngles.h"

#include <cmath>
#include <limits>
#include <stdexcept>
#include <utility>

namespace
{

constexpr double PI = 3.14159265358979323846;
constexpr double RADIANS_PER_DEGREE = PI / 180.0;

/// What an order code says.
struct Order
{
    /// The axes in the order in which static angles are applied.
    int i;
    int j;
    int k;
    bool odd;
    bool repeats;
    bool moving;
};

Order orderOf(int code)
{
    if (code < 0 || code > 23)
    {
        throw std::range_error("An Euler order is 0 to 23");
    }
    int const axis = code / 8;
    bool const odd = (code & 4) != 0;
    int const next = (axis + 1) % 3;
    int const afterNext = (axis + 2) % 3;
    return {axis, odd ? afterNext : next, odd ? next : afterNext, odd, (code & 2) != 0, (code & 1) != 0};
}

// An order code on loan in a coordinate; anything but a whole code is refused.
Order orderOf(double code)
{
    return orderOf(code >= 0.0 && code < 24.0 && code == std::floor(code) ? static_cast<int>(code) : -1);
}

Mtx_Vector4 withFactor(Mtx_Vector4 const& angles, double factor)
{
    return {angles.x * factor, angles.y * factor, angles.z * factor, angles.w};
}

}

namespace SFMEulerAngles
{

Mtx_Vector4 eul_pack(double first, double second, double third, int order)
{
    orderOf(order);
    return {first, second, third, static_cast<double>(order)};
}

Mtx_Vector4 eul_to_radians(Mtx_Vector4 const& degrees)
{
    return withFactor(degrees, RADIANS_PER_DEGREE);
}

Mtx_Vector4 eul_to_degrees(Mtx_Vector4 const& radians)
{
    return withFactor(radians, 1.0 / RADIANS_PER_DEGREE);
}

Mtx_Vector4 eul_to_quat(Mtx_Vector4 const& radians)
{
    Order const order = orderOf(radians.w);
    double const first = order.moving ? radians.z : radians.x;
    double const third = order.moving ? radians.x : radians.z;
    double const ti = first * 0.5;
    double const tj = (order.odd ? -radians.y : radians.y) * 0.5;
    double const th = third * 0.5;
    double const ci = std::cos(ti);
    double const cj = std::cos(tj);
    double const ch = std::cos(th);
    double const si = std::sin(ti);
    double const sj = std::sin(tj);
    double const sh = std::sin(th);
    double const cc = ci * ch;
    double const cs = ci * sh;
    double const sc = si * ch;
    double const ss = si * sh;
    double a[3];
    double w;
    if (order.repeats)
    {
        a[order.i] = cj * (cs + sc);
        a[order.j] = sj * (cc + ss);
        a[order.k] = sj * (cs - sc);
        w = cj * (cc - ss);
    }
    else
    {
        a[order.i] = cj * sc - sj * cs;
        a[order.j] = cj * ss + sj * cc;
        a[order.k] = cj * cs - sj * sc;
        w = cj * cc + sj * ss;
    }
    if (order.odd)
    {
        a[order.j] = -a[order.j];
    }
    return {a[0], a[1], a[2], w};
}

Sabrel::Matrix33 quat_to_matrix(Mtx_Vector4 const& q)
{
    double const norm = q.x * q.x + q.y * q.y + q.z * q.z + q.w * q.w;
    double const s = norm > 0.0 ? 2.0 / norm : 0.0;
    double const xs = q.x * s;
    double const ys = q.y * s;
    double const zs = q.z * s;
    return {{1.0 - (q.y * ys + q.z * zs), q.x * ys - q.w * zs, q.x * zs + q.w * ys, q.x * ys + q.w * zs,
             1.0 - (q.x * xs + q.z * zs), q.y * zs - q.w * xs, q.x * zs - q.w * ys, q.y * zs + q.w * xs,
             1.0 - (q.x * xs + q.y * ys)}};
}

Mtx_Vector4 eul_from_quat(Mtx_Vector4 const& quaternion, int order, Mtx_Vector4 const* previous)
{
    return eul_from_matrix(quat_to_matrix(quaternion), order, previous);
}

Mtx_Vector4 eul_continued(Mtx_Vector4 const& radians, Mtx_Vector4 const& previous)
{
    bool const repeats = orderOf(static_cast<int>(radians.w)).repeats;
    Mtx_Vector4 const folded{radians.x + PI, (repeats ? 0.0 : PI) - radians.y, radians.z + PI, radians.w};
    auto const nearest = [](double angle, double before)
    { return angle + 2 * PI * std::round((before - angle) / (2 * PI)); };
    Mtx_Vector4 best;
    double least = std::numeric_limits<double>::infinity();
    for (Mtx_Vector4 const& same : {radians, folded})
    {
        Mtx_Vector4 const near{nearest(same.x, previous.x), nearest(same.y, previous.y), nearest(same.z, previous.z),
                               same.w};
        double const distance = std::hypot(near.x - previous.x, near.y - previous.y, near.z - previous.z);
        if (distance < least)
        {
            least = distance;
            best = near;
        }
    }
    return best;
}

Sabrel::Matrix33 eul_to_matrix(Mtx_Vector4 const& radians)
{
    return quat_to_matrix(eul_to_quat(radians));
}

// Near gimbal lock the two outer angles are quotients of two small numbers, so that what
// rounding leaves of them is noise. Below this size of the small numbers the noise would
// pass a millionth of a radian; to take them for 0 there turns the rotation by no more
// than their size.
Mtx_Vector4 eul_from_matrix(Sabrel::Matrix33 const& rotation, int code, Mtx_Vector4 const* previous)
{
    constexpr double NOTHING = 1e-10;
    Order const order = orderOf(code);
    auto const& [i, j, k, odd, repeats, moving] = order;
    double const small =
        repeats ? std::hypot(rotation(i, j), rotation(i, k)) : std::hypot(rotation(i, i), rotation(j, i));
    double x;
    double y = repeats ? std::atan2(small, rotation(i, i)) : std::atan2(-rotation(k, i), small);
    double z = 0.0;
    if (small <= NOTHING)
    {
        if (previous)
        {
            z = (odd ? -1.0 : 1.0) * (moving ? previous->x : previous->z);
        }
        // What is left for the first axis when the turn by z, about k or again about i, is
        // taken away: the row j of that.
        int const other = repeats ? k : i;
        double const sine = repeats ? std::sin(z) : -std::sin(z);
        auto const left = [&, row = j](int column)
        { return std::cos(z) * rotation(row, column) + sine * rotation(other, column); };
        x = std::atan2(-left(k), left(j));
    }
    else if (repeats)
    {
        x = std::atan2(rotation(i, j), rotation(i, k));
        z = std::atan2(rotation(j, i), -rotation(k, i));
    }
    else
    {
        x = std::atan2(rotation(k, j), rotation(k, k));
        z = std::atan2(rotation(j, i), rotation(i, i));
    }
    if (odd)
    {
        x = -x;
        y = -y;
        z = -z;
    }
    if (moving)
    {
        std::swap(x, z);
    }
    return {x, y, z, static_cast<double>(code)};
}

}

Mtx_Vector4 mtx_rot3D_mult_s(Mtx_Vector4 const& a, Mtx_Vector4 const& b)
{
    return {a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y, a.w * b.y + a.y * b.w + a.z * b.x - a.x * b.z,
            a.w * b.z + a.z * b.w + a.x * b.y - a.y * b.x, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}
