#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/KyPoint.h>
#include <marlet/foundation/KyVector.h>

namespace kytl::matl
{

template <int Rows, int Columns, class T> class KyMatrix;

/// A 4 x 4 matrix in row-major storage. Points are column vectors: a point p becomes M * p, so a product A *
/// B * C applies C first. A translation stands in the fourth column, at indices 3, 7 and 11. A new matrix is
/// the identity.
template <> class MARLET_EXPORT KyMatrix<4, 4, float>
{
public:
    KyMatrix() : elements_{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}

    static KyMatrix Translation(float x, float y, float z);
    static KyMatrix Scaling(float x, float y, float z);

    float &operator()(int row, int column) { return elements_[4 * row + column]; }
    float operator()(int row, int column) const { return elements_[4 * row + column]; }
    float &operator[](int index) { return elements_[index]; }
    float operator[](int index) const { return elements_[index]; }
    /// The 16 elements, row by row.
    const float *Data() const { return elements_; }

    KyMatrix &operator*=(const KyMatrix &right);
    KyMatrix operator*(const KyMatrix &right) const;

    /// M * (x, y, z, 1), divided by w unless w is 0.
    KyPoint<3, float> TransformPoint(const KyPoint<3, float> &point) const;

    /// Turns the vector by the rotation in the matrix: its scale has no effect. A column that is all but zero
    /// (no component above 0.00001) stays as it is.
    void RotateVector(KyVector<3, float> &vector) const;

    /// A determinant that is no larger than what rounding leaves of the terms that it is the sum of counts as
    /// 0. @throws std::runtime_error "Matrix is singular"; the matrix is then as it was.
    void Invert();

    float Determinant() const;

    /// Element by element, exactly.
    bool operator==(const KyMatrix &other) const = default;

private:
    float elements_[16];
};

MARLET_EXPORT float Dot(const KyVector<3, float> &a, const KyVector<3, float> &b);
MARLET_EXPORT KyVector<3, float> Cross(const KyVector<3, float> &a, const KyVector<3, float> &b);
MARLET_EXPORT float Length(const KyVector<2, float> &v);
MARLET_EXPORT float Length(const KyVector<3, float> &v);
MARLET_EXPORT float Length(const KyVector<4, float> &v);

} // namespace kytl::matl
