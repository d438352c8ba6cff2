#include <marlet/foundation/KyMatrix.h>

#include <marlet/foundation/Singularity.h>

#include <cmath>
#include <stdexcept>

namespace kytl::matl
{

namespace
{

using Matrix = KyMatrix<4, 4, float>;

// What rounding may leave of a determinant that is 0, as a part of the sum of the magnitudes of its 24 terms.

/// Of a matrix whose elements are what they are meant to be.
constexpr double kExactElements = 1e-15;
/// Of a product, whose elements were rounded to float.
constexpr double kRoundedElements = 4e-7;

/// The 2 x 2 determinants of the upper and the lower two rows, of which determinant and inverse are made.
/// In double, which holds the product of two floats exactly.
struct Minors {
    double upper[6];
    double lower[6];
    /// The same with every sign a plus.
    double upperMagnitudes[6];
    double lowerMagnitudes[6];

    explicit Minors(const Matrix &m)
    {
        int i = 0;
        for (int left = 0; left < 3; ++left) {
            for (int right = left + 1; right < 4; ++right, ++i) {
                SetMinor(m, 0, left, right, upper[i], upperMagnitudes[i]);
                SetMinor(m, 2, left, right, lower[i], lowerMagnitudes[i]);
            }
        }
    }

    /// Laplace's expansion by the upper two rows.
    double Determinant() const
    {
        return upper[0] * lower[5] - upper[1] * lower[4] + upper[2] * lower[3] + upper[3] * lower[2] -
               upper[4] * lower[1] + upper[5] * lower[0];
    }

    /// The sum of the magnitudes of the determinant's terms.
    double Magnitude() const
    {
        double sum = 0;
        for (int i = 0; i < 6; ++i)
            sum += upperMagnitudes[i] * lowerMagnitudes[5 - i];
        return sum;
    }

    /// Whether the determinant may be 0 but for that part.
    bool IsSingular(double part) const { return std::abs(Determinant()) <= part * Magnitude(); }

private:
    static void SetMinor(const Matrix &m, int row, int left, int right, double &minor, double &magnitude)
    {
        const double falling = double(m(row, left)) * m(row + 1, right);
        const double rising = double(m(row, right)) * m(row + 1, left);
        minor = falling - rising;
        magnitude = std::abs(falling) + std::abs(rising);
    }
};

/// Where the minor of two columns stands in Minors.
constexpr int kMinorIndex[4][4] = {{0, 0, 1, 2}, {0, 0, 3, 4}, {1, 3, 0, 5}, {2, 4, 5, 0}};

/// The cofactor of an element: the row beside it in its pair of rows, expanded by the other pair's minors.
double Cofactor(const Matrix &m, const Minors &minors, int row, int column)
{
    const int partner = row ^ 1;
    const double *others = row < 2 ? minors.lower : minors.upper;
    double sum = 0;
    int position = 0;
    for (int c = 0; c < 4; ++c) {
        if (c == column)
            continue;
        int rest[2];
        int count = 0;
        for (int other = 0; other < 4; ++other)
            if (other != column && other != c)
                rest[count++] = other;
        const double term = m(partner, c) * others[kMinorIndex[rest[0]][rest[1]]];
        sum += position++ % 2 == 0 ? term : -term;
    }
    // The row beside stands first or last among the three rows that remain; in both cases its place does not
    // change the sign.
    return (row + column) % 2 == 0 ? sum : -sum;
}

[[noreturn]] void ThrowSingular()
{
    throw std::runtime_error("Matrix is singular");
}

} // namespace

Matrix Matrix::Translation(float x, float y, float z)
{
    Matrix m;
    m(0, 3) = x;
    m(1, 3) = y;
    m(2, 3) = z;
    return m;
}

Matrix Matrix::Scaling(float x, float y, float z)
{
    Matrix m;
    m(0, 0) = x;
    m(1, 1) = y;
    m(2, 2) = z;
    return m;
}

Matrix &Matrix::operator*=(const Matrix &right)
{
    *this = *this * right;
    return *this;
}

Matrix Matrix::operator*(const Matrix &right) const
{
    Matrix product;
    for (int row = 0; row < 4; ++row) {
        const float *left = elements_ + 4 * row;
        for (int column = 0; column < 4; ++column)
            product(row, column) = left[0] * right(0, column) + left[1] * right(1, column) +
                                   left[2] * right(2, column) + left[3] * right(3, column);
    }
    return product;
}

KyPoint<3, float> Matrix::TransformPoint(const KyPoint<3, float> &point) const
{
    float out[4];
    for (int row = 0; row < 4; ++row) {
        const float *m = elements_ + 4 * row;
        out[row] = m[0] * point.X + m[1] * point.Y + m[2] * point.Z + m[3];
    }
    if (out[3] == 0)
        return {out[0], out[1], out[2]};
    return {out[0] / out[3], out[1] / out[3], out[2] / out[3]};
}

void Matrix::RotateVector(KyVector<3, float> &vector) const
{
    constexpr float negligible = 0.00001f;
    KyVector<3, float> columns[3];
    for (int i = 0; i < 3; ++i) {
        KyVector<3, float> &column = columns[i];
        column = {(*this)(0, i), (*this)(1, i), (*this)(2, i)};
        if (std::abs(column.X) > negligible || std::abs(column.Y) > negligible ||
            std::abs(column.Z) > negligible) {
            const float length = Length(column);
            column = {column.X / length, column.Y / length, column.Z / length};
        }
    }
    vector = {columns[0].X * vector.X + columns[1].X * vector.Y + columns[2].X * vector.Z,
              columns[0].Y * vector.X + columns[1].Y * vector.Y + columns[2].Y * vector.Z,
              columns[0].Z * vector.X + columns[1].Z * vector.Y + columns[2].Z * vector.Z};
}

void Matrix::Invert()
{
    const Minors minors(*this);
    if (minors.IsSingular(kExactElements))
        ThrowSingular();
    const double determinant = minors.Determinant();
    Matrix inverse;
    bool finite = true;
    for (int row = 0; row < 4; ++row) {
        for (int column = 0; column < 4; ++column) {
            const double element = Cofactor(*this, minors, column, row) / determinant;
            inverse(row, column) = static_cast<float>(element);
            finite = finite && std::isfinite(inverse(row, column));
        }
    }
    if (!finite)
        ThrowSingular();
    *this = inverse;
}

float Matrix::Determinant() const
{
    return static_cast<float>(Minors(*this).Determinant());
}

bool IsSingularProduct(const Matrix &product)
{
    return product.Determinant() == 0 || Minors(product).IsSingular(kRoundedElements);
}

float Dot(const KyVector<3, float> &a, const KyVector<3, float> &b)
{
    return a.X * b.X + a.Y * b.Y + a.Z * b.Z;
}

KyVector<3, float> Cross(const KyVector<3, float> &a, const KyVector<3, float> &b)
{
    return {a.Y * b.Z - a.Z * b.Y, a.Z * b.X - a.X * b.Z, a.X * b.Y - a.Y * b.X};
}

// Squares in double, which neither overflow nor vanish for any float.

float Length(const KyVector<2, float> &v)
{
    return static_cast<float>(std::sqrt(double(v.X) * v.X + double(v.Y) * v.Y));
}

float Length(const KyVector<3, float> &v)
{
    return static_cast<float>(std::sqrt(double(v.X) * v.X + double(v.Y) * v.Y + double(v.Z) * v.Z));
}

float Length(const KyVector<4, float> &v)
{
    return static_cast<float>(
        std::sqrt(double(v.X) * v.X + double(v.Y) * v.Y + double(v.Z) * v.Z + double(v.W) * v.W));
}

} // namespace kytl::matl
