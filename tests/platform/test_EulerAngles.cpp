// All orders of Euler angles against matrices that are put together axis by axis.

#include "mtx/SFMEulerAngles.h"

#include <Eigen/Geometry>
#include <gtest/gtest.h>

#include <random>

namespace
{

using namespace SFMEulerAngles;
using Eigen::AngleAxisd;
using Eigen::Matrix3d;
using Eigen::Vector3d;

constexpr double PI = 3.14159265358979323846;

struct NamedOrder
{
    char const* axes;
    bool moving;
};

// By code: the first axis, then parity, repetition and frame. A name lists the axes in
// the order in which its angles stand.
constexpr NamedOrder ORDERS[24] = {
    {"XYZ", false}, {"ZYX", true}, {"XYX", false}, {"XYX", true}, {"XZY", false}, {"YZX", true},
    {"XZX", false}, {"XZX", true}, {"YZX", false}, {"XZY", true}, {"YZY", false}, {"YZY", true},
    {"YXZ", false}, {"ZXY", true}, {"YXY", false}, {"YXY", true}, {"ZXY", false}, {"YXZ", true},
    {"ZXZ", false}, {"ZXZ", true}, {"ZYX", false}, {"XYZ", true}, {"ZYZ", false}, {"ZYZ", true},
};

Matrix3d composed(int order, Vector3d const& angles)
{
    Matrix3d product = Matrix3d::Identity();
    for (int i = 0; i < 3; ++i)
    {
        Matrix3d const turn = AngleAxisd(angles[i], Vector3d::Unit(ORDERS[order].axes[i] - 'X')).toRotationMatrix();
        product = ORDERS[order].moving ? Matrix3d(product * turn) : Matrix3d(turn * product);
    }
    return product;
}

Matrix3d toEigen(Sabrel::Matrix33 const& matrix)
{
    return Eigen::Map<Eigen::Matrix<double, 3, 3, Eigen::RowMajor> const>(matrix.m.data());
}

Sabrel::Matrix33 fromEigen(Matrix3d const& matrix)
{
    Sabrel::Matrix33 result;
    Eigen::Map<Eigen::Matrix<double, 3, 3, Eigen::RowMajor>>(result.m.data()) = matrix;
    return result;
}

Matrix3d fromAngles(Mtx_Vector4 const& packed)
{
    return composed(static_cast<int>(packed.w), {packed.x, packed.y, packed.z});
}

TEST(EulerAngles, AllOrdersGoToMatricesAndQuaternionsAndBack)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> angle(-2 * PI, 2 * PI);
    for (int order = 0; order < 24; ++order)
    {
        SCOPED_TRACE(order);
        for (int i = 0; i < 200; ++i)
        {
            Vector3d const angles(angle(random), angle(random), angle(random));
            Matrix3d const wanted = composed(order, angles);
            Mtx_Vector4 const packed = eul_pack(angles.x(), angles.y(), angles.z(), order);
            Mtx_Vector4 const quaternion = eul_to_quat(packed);
            EXPECT_LT((toEigen(eul_to_matrix(packed)) - wanted).norm(), 1e-14);
            Eigen::Quaterniond const same(quaternion.w, quaternion.x, quaternion.y, quaternion.z);
            EXPECT_LT((same.toRotationMatrix() - wanted).norm(), 1e-14);
            // A factor on a quaternion means nothing.
            Mtx_Vector4 const longer{-3 * quaternion.x, -3 * quaternion.y, -3 * quaternion.z, -3 * quaternion.w};
            EXPECT_LT((fromAngles(eul_from_quat(longer, order)) - wanted).norm(), 1e-12);
            EXPECT_LT((fromAngles(eul_from_matrix(fromEigen(wanted), order)) - wanted).norm(), 1e-12);
        }
    }
}

// On the way through the lock the rotation stays what it is, and rounding moves no angle of
// a thing that stands still there.
TEST(EulerAngles, GimbalLockKeepsTheRotationAndTheOuterAngleBefore)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> angle(-3, 3);
    std::uniform_real_distribution<double> noise(-1e-15, 1e-15);
    for (int order = 0; order < 24; ++order)
    {
        bool const repeats = ORDERS[order].axes[0] == ORDERS[order].axes[2];
        for (double const locked : {repeats ? 0.0 : PI / 2, repeats ? PI : -PI / 2})
        {
            SCOPED_TRACE(testing::Message() << order << ", middle angle " << locked);
            Vector3d const angles(angle(random), locked, angle(random));
            Matrix3d const wanted = composed(order, angles);
            Mtx_Vector4 const alone = eul_from_matrix(fromEigen(wanted), order);
            EXPECT_LT((fromAngles(alone) - wanted).norm(), 1e-9);
            EXPECT_EQ(ORDERS[order].moving ? alone.x : alone.z, 0);

            Mtx_Vector4 const before = eul_pack(angles.x(), angles.y(), angles.z(), order);
            for (int i = 0; i < 20; ++i)
            {
                Matrix3d noisy = wanted;
                noisy += Matrix3d::NullaryExpr([&] { return noise(random); });
                Mtx_Vector4 const after = eul_from_matrix(fromEigen(noisy), order, &before);
                EXPECT_LT((fromAngles(after) - wanted).norm(), 1e-9);
                EXPECT_NEAR(std::remainder(after.x - angles.x(), 2 * PI), 0, 1e-9);
                EXPECT_NEAR(std::remainder(after.z - angles.z(), 2 * PI), 0, 1e-9);
            }
        }
    }
}

// A slow turn through everything: no step is larger than the turn asks for, and each triple
// is the rotation that it continues to.
TEST(EulerAngles, ContinuedAnglesDoNotJump)
{
    for (int order = 0; order < 24; ++order)
    {
        SCOPED_TRACE(order);
        Mtx_Vector4 before = eul_pack(0.3, 0.4, 0.5, order);
        for (int step = 1; step <= 400; ++step)
        {
            double const t = step * 0.05;
            Matrix3d const wanted = composed(order, {0.3 + t, 0.4 + 0.7 * t, 0.5 - 0.9 * t});
            Mtx_Vector4 const now = eul_continued(eul_from_matrix(fromEigen(wanted), order), before);
            ASSERT_LT((fromAngles(now) - wanted).norm(), 1e-12);
            ASSERT_LT(std::abs(now.x - before.x) + std::abs(now.y - before.y) + std::abs(now.z - before.z), 0.14);
            before = now;
        }
    }
}

// Where lock is near but not there, the angles are the true ones but for a millionth.
TEST(EulerAngles, NearTheLockAnglesAreAccurate)
{
    for (double const distance : {1e-3, 1e-6, 1e-8, 1e-9})
    {
        Mtx_Vector4 const angles = eul_pack(0.3, PI / 2 - distance, -1.2, 0);
        Mtx_Vector4 const back = eul_from_matrix(eul_to_matrix(angles), 0);
        EXPECT_NEAR(back.x, 0.3, 1e-6) << distance;
        EXPECT_NEAR(back.z, -1.2, 1e-6) << distance;
    }
}

TEST(EulerAngles, QuaternionProductAppliesTheSecondFirst)
{
    Mtx_Vector4 const a = eul_to_quat(eul_pack(0.3, -0.8, 1.9, 0));
    Mtx_Vector4 const b = eul_to_quat(eul_pack(-1.1, 0.4, 0.2, 21));
    Matrix3d const product = toEigen(quat_to_matrix(a)) * toEigen(quat_to_matrix(b));
    EXPECT_LT((toEigen(quat_to_matrix(mtx_rot3D_mult_s(a, b))) - product).norm(), 1e-14);
    EXPECT_NEAR(eul_to_degrees(eul_to_radians({12, 34, 56, 5})).y, 34, 1e-12);
}

TEST(EulerAngles, OtherCodesAreRefused)
{
    EXPECT_THROW(eul_pack(0, 0, 0, -1), std::range_error);
    EXPECT_THROW(eul_pack(0, 0, 0, 24), std::range_error);
    EXPECT_THROW(eul_from_quat({0, 0, 0, 1}, 31), std::range_error);
    for (double const code : {-1.0, 24.0, 0.5, std::nan(""), 1e300})
    {
        EXPECT_THROW(eul_to_quat({0, 0, 0, code}), std::range_error) << code;
    }
}

}
