#include <tests/support/MatrixMatchers.h>

#include <marlet/foundation/Singularity.h>

#include <gmock/gmock.h>

#include <array>
#include <cmath>
#include <random>
#include <stdexcept>

namespace
{

using namespace kytl::matl;
using marlet::test::IsMatrixNear;
using Matrix = KyMatrix<4, 4, float>;

Matrix Of(const std::array<float, 16> &elements)
{
    Matrix m;
    for (int i = 0; i < 16; ++i)
        m[i] = elements[i];
    return m;
}

Matrix Random(std::mt19937 &generator)
{
    std::uniform_real_distribution<float> elements(-2, 2);
    Matrix m;
    for (int i = 0; i < 16; ++i)
        m[i] = elements(generator);
    return m;
}

TEST(KyMatrixTest, AProductAppliesItsRightOperandFirst)
{
    Matrix m = Matrix::Translation(10, 20, 30);
    m *= Matrix::Scaling(2, 3, 4);
    EXPECT_EQ(m, Of({2, 0, 0, 10, 0, 3, 0, 20, 0, 0, 4, 30, 0, 0, 0, 1}));
    EXPECT_EQ(m(1, 3), 20);
    const Matrix a = Of({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    const Matrix b = Of({2, 0, 1, 3, 1, 1, 0, 2, 0, 2, 1, 1, 3, 1, 2, 0});
    EXPECT_EQ(a * b, Of({16, 12, 12, 10, 40, 28, 28, 34, 64, 44, 44, 58, 88, 60, 60, 82}));
    Matrix squared = a;
    squared *= squared;
    EXPECT_EQ(squared, a * a);
}

TEST(KyMatrixTest, TransformedPointsAreDividedByWUnlessItIsZero)
{
    const Matrix projecting = Of({1, 2, 3, 4, 0, 1, 0, 5, 2, 0, 1, 6, 0, 0, 2, 2});
    EXPECT_EQ(projecting.TransformPoint({1, 2, 3}), (KyPoint<3, float>{18.0f / 8, 7.0f / 8, 11.0f / 8}));
    for (const float zero : {0.0f, -0.0f}) {
        const Matrix flat = Of({1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, zero, zero, zero, zero});
        EXPECT_EQ(flat.TransformPoint({5, 6, 7}), (KyPoint<3, float>{6, 8, 10}));
    }
}

TEST(KyMatrixTest, RotatingAVectorTakesNoScaleAndNoTranslation)
{
    const Matrix turn = Of({0.6f, -0.8f, 0, 0, 0.8f, 0.6f, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
    KyVector<3, float> vector = {3, -4, 5};
    (Matrix::Translation(7, 8, 9) * turn * Matrix::Scaling(2, 0.25f, 1e20f)).RotateVector(vector);
    EXPECT_NEAR(vector.X, 5, 1e-6);
    EXPECT_NEAR(vector.Y, 0, 1e-6);
    EXPECT_EQ(vector.Z, 5);
    // Columns next to zero are not normalised.
    vector = {1, 1, 1};
    Matrix::Scaling(0, 0.00001f, 0.000011f).RotateVector(vector);
    EXPECT_EQ(vector, (KyVector<3, float>{0, 0.00001f, 1}));
}

TEST(KyMatrixTest, DeterminantsMultiplyAndTheInverseMakesTheIdentity)
{
    std::mt19937 generator(7);
    for (int i = 0; i < 100; ++i) {
        const Matrix m = Random(generator);
        const Matrix other = Random(generator);
        const double product = double(m.Determinant()) * other.Determinant();
        EXPECT_NEAR((m * other).Determinant(), product, 1e-4 * (1 + std::abs(product)));
        if (std::abs(m.Determinant()) < 0.1f)
            continue;
        Matrix inverse = m;
        inverse.Invert();
        EXPECT_THAT(m * inverse, IsMatrixNear(Matrix(), 1e-4));
    }
    EXPECT_EQ(Matrix::Scaling(2, 3, -4).Determinant(), -24);
}

TEST(KyMatrixTest, ASingularMatrixThrowsAndStays)
{
    for (const float x : {0.0f, 1e-40f, NAN}) {
        Matrix m = Matrix::Scaling(x, 2, 1);
        EXPECT_THAT([&] { m.Invert(); }, testing::ThrowsMessage<std::runtime_error>("Matrix is singular"));
        EXPECT_EQ(m(1, 1), 2);
    }
    // Rows of integers, one of them the sum of others: the determinant is 0, but rarely as it is rounded.
    std::mt19937 generator(5);
    for (int i = 0; i < 100; ++i) {
        Matrix m;
        for (int element = 0; element < 12; ++element)
            m[element] = static_cast<float>(generator() % (1 << 22));
        for (int column = 0; column < 4; ++column)
            m(3, column) = m(0, column) + m(1, column) + m(2, column);
        EXPECT_THROW(m.Invert(), std::runtime_error) << i;
    }
    // The least determinant that two rows of floats can have beside their terms.
    Matrix least;
    least(0, 0) = 16777214;
    least(0, 1) = least(1, 0) = 16777215;
    least(1, 1) = 16777216;
    least.Invert();
    EXPECT_EQ(least, Of({-16777216, 16777215, 0, 0, 16777215, -16777214, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
}

TEST(KyMatrixTest, AProductIsSingularIfRoundingMayBeAllThatKeepsItFromThat)
{
    // About axes that are no axis of the coordinates, with rounded cosines and sines.
    const Matrix turn = Of({0.36f, 0.48f, -0.8f, 7, -0.8f, 0.6f, 0, -3, 0.48f, 0.64f, 0.6f, 11, 0, 0, 0, 1});
    int zeros = 0;
    for (int i = 1; i <= 50; ++i) {
        const float size = 0.1f * static_cast<float>(i);
        const Matrix flat = turn * Matrix::Scaling(size, 1, 0) * turn * Matrix::Scaling(0.3f, 7, size);
        zeros += flat.Determinant() == 0 ? 1 : 0;
        EXPECT_TRUE(IsSingularProduct(flat)) << i;
        const Matrix thin = turn * Matrix::Scaling(size, 1, 1e-5f) * turn * Matrix::Scaling(0.3f, 7, size);
        EXPECT_FALSE(IsSingularProduct(thin)) << i;
    }
    EXPECT_LT(zeros, 50);
    EXPECT_FALSE(IsSingularProduct(Matrix::Scaling(1e-9f, 1, 1e-9f))) << "small beside nothing";
    EXPECT_TRUE(IsSingularProduct(Matrix::Scaling(1e-20f, 1e-20f, 1e-20f))) << "0 as a float";
}

TEST(KyMatrixTest, LengthsAreOfTwoThreeOrFourComponents)
{
    EXPECT_EQ(Length(KyVector<2, float>{3e30f, 4e30f}), 5e30f);
    EXPECT_EQ(Length(KyVector<3, float>{1e-30f, 2e-30f, 2e-30f}), 3e-30f);
    EXPECT_EQ(Length(KyVector<4, float>{2, -4, 5, 6}), 9);
}

} // namespace
