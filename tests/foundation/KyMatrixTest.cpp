#include <marlet/foundation/KyMatrix.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <stdexcept>

namespace
{

using namespace kytl::matl;
using Matrix = KyMatrix<4, 4, float>;

Matrix Of(const std::array<float, 16> &elements)
{
    Matrix m;
    for (int i = 0; i < 16; ++i)
        m[i] = elements[i];
    return m;
}

Matrix RotationZ(double angle)
{
    const auto c = static_cast<float>(std::cos(angle));
    const auto s = static_cast<float>(std::sin(angle));
    return Of({c, -s, 0, 0, s, c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
}

Matrix Random(std::mt19937 &generator)
{
    std::uniform_real_distribution<float> elements(-2, 2);
    Matrix m;
    for (int i = 0; i < 16; ++i)
        m[i] = elements(generator);
    return m;
}

/// The determinant by its definition: a signed product for each permutation of the columns.
double DeterminantByPermutations(const Matrix &m)
{
    std::array<int, 4> columns = {0, 1, 2, 3};
    double sum = 0;
    do {
        int inversions = 0;
        for (int i = 0; i < 4; ++i)
            for (int j = i + 1; j < 4; ++j)
                inversions += columns[i] > columns[j];
        double product = inversions % 2 ? -1 : 1;
        for (int row = 0; row < 4; ++row)
            product *= m(row, columns[row]);
        sum += product;
    } while (std::next_permutation(columns.begin(), columns.end()));
    return sum;
}

void ExpectNear(const Matrix &actual, const Matrix &expected, float tolerance)
{
    for (int i = 0; i < 16; ++i)
        EXPECT_NEAR(actual[i], expected[i], tolerance) << "element " << i;
}

TEST(KyMatrixTest, StartsAsTheIdentityInRowMajorStorage)
{
    EXPECT_EQ(Matrix(), Of({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1}));
    EXPECT_EQ(Matrix::Translation(2, 3, 4), Of({1, 0, 0, 2, 0, 1, 0, 3, 0, 0, 1, 4, 0, 0, 0, 1}));
    EXPECT_EQ(Matrix::Scaling(2, 3, 4), Of({2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1}));
    EXPECT_EQ(Matrix::Translation(2, 3, 4)(1, 3), 3);
    EXPECT_EQ(Matrix::Translation(2, 3, 4).Data()[7], 3);
}

TEST(KyMatrixTest, AProductAppliesItsRightOperandFirst)
{
    Matrix m = Matrix::Translation(10, 20, 30);
    m *= Matrix::Scaling(2, 3, 4);
    EXPECT_EQ(m, Of({2, 0, 0, 10, 0, 3, 0, 20, 0, 0, 4, 30, 0, 0, 0, 1}));

    const Matrix a = Of({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16});
    const Matrix b = Of({2, 0, 1, 3, 1, 1, 0, 2, 0, 2, 1, 1, 3, 1, 2, 0});
    const Matrix expected = Of({16, 12, 12, 10, 40, 28, 28, 34, 64, 44, 44, 58, 88, 60, 60, 82});
    EXPECT_EQ(a * b, expected);
    Matrix squared = a;
    squared *= squared;
    EXPECT_EQ(squared, a * a);
}

TEST(KyMatrixTest, TransformedPointsAreDividedByWUnlessItIsZero)
{
    const Matrix projecting = Of({1, 2, 3, 4, 0, 1, 0, 5, 2, 0, 1, 6, 0, 0, 2, 2});
    const KyPoint<3, float> point = projecting.TransformPoint({1, 2, 3});
    EXPECT_EQ(point.X, 18.0f / 8);
    EXPECT_EQ(point.Y, 7.0f / 8);
    EXPECT_EQ(point.Z, 11.0f / 8);

    for (const float zero : {0.0f, -0.0f}) {
        const Matrix flat = Of({1, 0, 0, 1, 0, 1, 0, 2, 0, 0, 1, 3, zero, zero, zero, zero});
        const KyPoint<3, float> undivided = flat.TransformPoint({5, 6, 7});
        EXPECT_EQ(undivided.X, 6);
        EXPECT_EQ(undivided.Y, 8);
        EXPECT_EQ(undivided.Z, 10);
    }
}

TEST(KyMatrixTest, RotatingAVectorTakesNoScaleAndNoTranslation)
{
    const Matrix rotation = RotationZ(0.5);
    const Matrix scaled = Matrix::Translation(7, 8, 9) * rotation * Matrix::Scaling(2, 0.25f, 1e20f);
    KyVector<3, float> pure = {3, -4, 5};
    KyVector<3, float> vector = pure;
    rotation.RotateVector(pure);
    scaled.RotateVector(vector);
    EXPECT_NEAR(pure.X, 3 * std::cos(0.5) + 4 * std::sin(0.5), 1e-6);
    EXPECT_NEAR(pure.Y, 3 * std::sin(0.5) - 4 * std::cos(0.5), 1e-6);
    EXPECT_EQ(pure.Z, 5);
    EXPECT_EQ(vector, pure);
}

TEST(KyMatrixTest, ColumnsNextToZeroAreNotNormalised)
{
    KyVector<3, float> vector = {1, 1, 1};
    Matrix::Scaling(0, 0.00001f, 0.000011f).RotateVector(vector);
    EXPECT_EQ(vector.X, 0);
    EXPECT_EQ(vector.Y, 0.00001f);
    EXPECT_EQ(vector.Z, 1);
}

TEST(KyMatrixTest, DeterminantIsTheSumOverPermutations)
{
    std::mt19937 generator(7);
    for (int i = 0; i < 50; ++i) {
        const Matrix m = Random(generator);
        const double expected = DeterminantByPermutations(m);
        EXPECT_NEAR(m.Determinant(), expected, 1e-5 * (1 + std::abs(expected)));
    }
    EXPECT_EQ(Matrix::Scaling(2, 3, -4).Determinant(), -24);
}

TEST(KyMatrixTest, InverseTimesMatrixIsTheIdentity)
{
    std::mt19937 generator(11);
    for (int i = 0; i < 50; ++i) {
        const Matrix m = Random(generator);
        if (std::abs(m.Determinant()) < 0.1f)
            continue;
        Matrix inverse = m;
        inverse.Invert();
        ExpectNear(m * inverse, Matrix(), 1e-4f);
        ExpectNear(inverse * m, Matrix(), 1e-4f);
    }
    Matrix placed = Matrix::Translation(10, -20, 30) * Matrix::Scaling(2, 4, 8);
    placed.Invert();
    EXPECT_EQ(placed, Of({0.5f, 0, 0, -5, 0, 0.25f, 0, 5, 0, 0, 0.125f, -3.75f, 0, 0, 0, 1}));
}

TEST(KyMatrixTest, ASingularMatrixThrowsAndStays)
{
    const Matrix singular[] = {
        Matrix::Scaling(1, 0, 1),
        Of({1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}),
        Matrix::Scaling(1e-40f, 1, 1),
        Matrix::Scaling(NAN, 1, 1),
    };
    for (const Matrix &original : singular) {
        Matrix m = original;
        try {
            m.Invert();
            ADD_FAILURE();
        } catch (const std::runtime_error &error) {
            EXPECT_STREQ(error.what(), "Matrix is singular");
        }
        for (int i = 1; i < 16; ++i)
            EXPECT_EQ(m[i], original[i]);
    }
}

TEST(KyMatrixTest, VectorProductsAndLengths)
{
    const KyVector<3, float> a = {2, -3, 6};
    const KyVector<3, float> b = {1, 4, -2};
    EXPECT_EQ(Dot(a, b), -22);
    const KyVector<3, float> across = Cross(a, b);
    EXPECT_EQ(across.X, -18);
    EXPECT_EQ(across.Y, 10);
    EXPECT_EQ(across.Z, 11);
    EXPECT_EQ(Length(a), 7);
    EXPECT_EQ(Length(KyVector<2, float>{-3, 4}), 5);
    EXPECT_EQ(Length(KyVector<3, float>{0, 3e30f, 4e30f}), 5e30f);
    EXPECT_EQ(Length(KyVector<2, float>{3e-30f, 4e-30f}), 5e-30f);
}

} // namespace
