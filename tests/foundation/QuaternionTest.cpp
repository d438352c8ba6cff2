#include <tests/support/MatrixMatchers.h>
#include <tests/support/TransformationModel.h>

#include <marlet/foundation/Quaternion.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

namespace
{

using namespace marlet::project;
namespace model = marlet::test::model;
using marlet::test::IsMatrixNear;
using model::operator*;
using Matrix = kytl::matl::KyMatrix<4, 4, float>;

constexpr double kDegree = std::numbers::pi / 180;

const Orientation3D kOrientations[] = {{0, 0, 0},     {10, 20, 30}, {-70, 60, 120}, {350, 10, 185},
                                       {179, 1, 2},   {1, 179, 2},  {1, 2, 179},    {170, 85, -160},
                                       {180, 0, 180}, {400, -80, 5}};

TEST(QuaternionTest, EveryFormIsTheSameRotation)
{
    for (const Orientation3D &o : kOrientations) {
        SCOPED_TRACE(testing::Message() << o.X << ", " << o.Y << ", " << o.Z);
        const model::Matrix textbook = model::AboutX(-o.X) * model::AboutY(-o.Y) * model::AboutZ(-o.Z);
        const Quaternion q = Quaternion::FromOrientation(o);
        EXPECT_THAT(q.ToMatrix(), IsMatrixNear(textbook, 5e-6));
        EXPECT_THAT(Quaternion::FromMatrix(q.ToMatrix()).ToMatrix(), IsMatrixNear(textbook, 5e-6));
        const kytl::matl::KyVector<3, float> euler = q.ToEuler();
        EXPECT_THAT(model::AboutX(euler.X / kDegree) * model::AboutY(euler.Y / kDegree) *
                        model::AboutZ(euler.Z / kDegree),
                    IsMatrixNear(textbook, 5e-6));
    }
    // Half turns, where the trace says nothing.
    EXPECT_EQ(Quaternion::FromMatrix(Matrix::Scaling(1, -1, -1)).x, 1);
    EXPECT_EQ(Quaternion::FromMatrix(Matrix::Scaling(-1, 1, -1)).y, 1);
    EXPECT_EQ(Quaternion::FromMatrix(Matrix::Scaling(-1, -1, 1)).z, 1);
}

TEST(QuaternionTest, AtARightAngleOfYAllOfTheTurnIsX)
{
    // X and Z turn about one axis there: with each other at 90 degrees, where X comes out mirrored, and
    // against each other at -90.
    for (const auto &[y, x] : {std::pair(-90.0f, 50 * kDegree), std::pair(90.0f, 10 * kDegree)}) {
        const auto angles = Quaternion::FromOrientation({20, y, 30}).ToEuler();
        EXPECT_EQ(angles.Y, std::copysign(1.5707964f, -y));
        EXPECT_EQ(angles.Z, 0);
        EXPECT_NEAR(angles.X, x, 1e-5);
    }
}

TEST(QuaternionTest, AProductIsMultipliedOut)
{
    // (1 + 2i + 3j + 4k)(5 + 6i + 7j + 8k)
    const Quaternion product = Quaternion{1, 2, 3, 4} * Quaternion{5, 6, 7, 8};
    EXPECT_EQ((std::array{product.w, product.x, product.y, product.z}),
              (std::array{-60.f, 12.f, 30.f, 24.f}));
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
        }
    }
    EXPECT_EQ(Slerp(from, to, -1).z, from.z);
    EXPECT_EQ(Slerp(from, opposite, 1).z, opposite.z);
    EXPECT_EQ(Slerp(from, opposite, 2).z, opposite.z);
    // Straight between neighbours, whose arc has no sine to divide by.
    EXPECT_EQ(Slerp({}, {1, 0.0001f, 0, 0}, 0.5f).x, 0.00005f);
    EXPECT_EQ(Slerp(from, from, 0.5f).w, from.w);
}

} // namespace
