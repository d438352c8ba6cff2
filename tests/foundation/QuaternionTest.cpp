#include <marlet/foundation/Quaternion.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

namespace
{

using namespace marlet::project;
using Matrix3 = std::array<std::array<double, 3>, 3>;
using Matrix = kytl::matl::KyMatrix<4, 4, float>;

constexpr double kDegree = std::numbers::pi / 180;

/// A rotation about one of the axes, written down as textbooks do.
Matrix3 AboutAxis(int axis, double angle)
{
    Matrix3 m{};
    const int next = (axis + 1) % 3;
    const int last = (axis + 2) % 3;
    m[axis][axis] = 1;
    m[next][next] = m[last][last] = std::cos(angle);
    m[last][next] = std::sin(angle);
    m[next][last] = -std::sin(angle);
    return m;
}

Matrix3 Product(const Matrix3 &a, const Matrix3 &b)
{
    Matrix3 product{};
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            for (int i = 0; i < 3; ++i)
                product[row][column] += a[row][i] * b[i][column];
    return product;
}

/// Rx(x) * Ry(y) * Rz(z).
Matrix3 FromAngles(double x, double y, double z)
{
    return Product(Product(AboutAxis(0, x), AboutAxis(1, y)), AboutAxis(2, z));
}

void ExpectNear(const Matrix &actual, const Matrix3 &expected)
{
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            EXPECT_NEAR(actual(row, column), expected[row][column], 5e-6) << row << ", " << column;
    EXPECT_EQ(actual(0, 3), 0);
    EXPECT_EQ(actual(3, 0), 0);
    EXPECT_EQ(actual(3, 3), 1);
}

Matrix Widened(const Matrix3 &m)
{
    Matrix wide;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            wide(row, column) = static_cast<float>(m[row][column]);
    return wide;
}

const Orientation3D kOrientations[] = {
    {0, 0, 0},   {30, 0, 0},  {0, 40, 0},  {0, 0, 50},      {10, 20, 30},  {-70, 60, 120}, {350, 10, 185},
    {179, 1, 2}, {1, 179, 2}, {1, 2, 179}, {170, 85, -160}, {180, 0, 180}, {400, -80, 5},  {45, -45, 200}};

TEST(QuaternionTest, OrientationTurnsXThenYThenZTheOtherWayRound)
{
    for (const Orientation3D &o : kOrientations) {
        SCOPED_TRACE(testing::Message() << o.X << ", " << o.Y << ", " << o.Z);
        ExpectNear(Quaternion::FromOrientation(o).ToMatrix(),
                   FromAngles(-o.X * kDegree, -o.Y * kDegree, -o.Z * kDegree));
    }
}

TEST(QuaternionTest, MatrixAndQuaternionAreTheSameRotation)
{
    for (const Orientation3D &o : kOrientations) {
        SCOPED_TRACE(testing::Message() << o.X << ", " << o.Y << ", " << o.Z);
        const Matrix3 rotation = FromAngles(o.X * kDegree, o.Y * kDegree, o.Z * kDegree);
        const Quaternion q = Quaternion::FromMatrix(Widened(rotation));
        EXPECT_NEAR(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z, 1, 1e-6);
        ExpectNear(q.ToMatrix(), rotation);
    }
}

TEST(QuaternionTest, HalfTurnsAreTheirAxis)
{
    const auto of = [](float x, float y, float z) {
        return Quaternion::FromMatrix(Matrix::Scaling(x, y, z));
    };
    EXPECT_EQ(of(1, -1, -1).x, 1);
    EXPECT_EQ(of(-1, 1, -1).y, 1);
    EXPECT_EQ(of(-1, -1, 1).z, 1);
}

TEST(QuaternionTest, EulerAnglesMakeTheRotationAgain)
{
    for (const Orientation3D &o : kOrientations) {
        SCOPED_TRACE(testing::Message() << o.X << ", " << o.Y << ", " << o.Z);
        const Quaternion q = Quaternion::FromOrientation(o);
        const kytl::matl::KyVector<3, float> angles = q.ToEuler();
        ExpectNear(q.ToMatrix(), FromAngles(angles.X, angles.Y, angles.Z));
    }
}

TEST(QuaternionTest, AtARightAngleOfYAllOfTheTurnIsX)
{
    struct Case {
        float orientationY;
        float eulerY;
        double eulerX;
    };
    // X and Z turn about one axis there: with each other at 90 degrees, where X comes out mirrored, and
    // against each other at -90.
    const Case cases[] = {{-90, 1.5707964f, 50 * kDegree}, {90, -1.5707964f, 10 * kDegree}};
    for (const Case &c : cases) {
        const auto angles = Quaternion::FromOrientation({20, c.orientationY, 30}).ToEuler();
        EXPECT_EQ(angles.Y, c.eulerY);
        EXPECT_EQ(angles.Z, 0);
        EXPECT_NEAR(angles.X, c.eulerX, 1e-5);
    }
}

TEST(QuaternionTest, ProductFollowsTheRulesOfItsUnits)
{
    const Quaternion i = {0, 1, 0, 0};
    const Quaternion j = {0, 0, 1, 0};
    const Quaternion k = {0, 0, 0, 1};
    const auto expect = [](const Quaternion &q, float w, float x, float y, float z) {
        EXPECT_EQ(q.w, w);
        EXPECT_EQ(q.x, x);
        EXPECT_EQ(q.y, y);
        EXPECT_EQ(q.z, z);
    };
    expect(i * j, 0, 0, 0, 1);
    expect(j * k, 0, 1, 0, 0);
    expect(k * i, 0, 0, 1, 0);
    expect(j * i, 0, 0, 0, -1);
    expect(i * i, -1, 0, 0, 0);
    // (1 + 2i + 3j + 4k)(5 + 6i + 7j + 8k), multiplied out.
    expect(Quaternion{1, 2, 3, 4} * Quaternion{5, 6, 7, 8}, -60, 12, 30, 24);
}

TEST(QuaternionTest, SlerpTurnsEvenlyAlongTheShorterArc)
{
    const Quaternion from = Quaternion::AboutAxis({0, 0, 1}, static_cast<float>(10 * kDegree));
    const Quaternion to = Quaternion::AboutAxis({0, 0, 1}, static_cast<float>(50 * kDegree));
    const Quaternion opposite = {-to.w, -to.x, -to.y, -to.z};
    for (const float s : {0.0f, 0.25f, 0.5f, 0.9f}) {
        for (const Quaternion &end : {to, opposite}) {
            const Quaternion q = Slerp(from, end, s);
            EXPECT_NEAR(q.w, std::cos((10 + 40 * s) * kDegree), 1e-6);
            EXPECT_NEAR(q.z, std::sin((10 + 40 * s) * kDegree), 1e-6);
            EXPECT_EQ(q.x, 0);
            EXPECT_EQ(q.y, 0);
        }
    }
    EXPECT_EQ(Slerp(from, to, -1).z, from.z);
    EXPECT_EQ(Slerp(from, opposite, 1).z, opposite.z);
    EXPECT_EQ(Slerp(from, opposite, 2).z, opposite.z);
}

TEST(QuaternionTest, SlerpBetweenNeighboursIsStraight)
{
    const Quaternion from;
    const Quaternion to = {1, 0.0001f, 0, 0};
    EXPECT_EQ(Slerp(from, to, 0.5f).x, 0.00005f);
    EXPECT_EQ(Slerp(from, from, 0.5f).w, 1);
}

} // namespace
