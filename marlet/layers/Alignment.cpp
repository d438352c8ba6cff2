#include <marlet/layers/Alignment.h>

#include <marlet/foundation/Singularity.h>
#include <marlet/layers/LayerValues.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace marlet::project
{

using Matrix = kytl::matl::KyMatrix<4, 4, float>;
using Point = kytl::matl::KyPoint<3, float>;
using Vector = kytl::matl::KyVector<3, float>;

namespace
{

constexpr float kNoLength = 0.00001f;

Vector Minus(const Point &a, const Point &b)
{
    return {a.X - b.X, a.Y - b.Y, a.Z - b.Z};
}

Vector Opposite(const Vector &v)
{
    return {-v.X, -v.Y, -v.Z};
}

Vector Normalised(const Vector &v)
{
    const float length = Length(v);
    return {v.X / length, v.Y / length, v.Z / length};
}

Vector NormalisedIfLong(const Vector &v)
{
    return HasNoDirection(v) ? v : Normalised(v);
}

Matrix ReflectionAcross(const Vector &a)
{
    const float components[3] = {a.X, a.Y, a.Z};
    Matrix result;
    for (int row = 0; row < 3; ++row)
        for (int column = 0; column < 3; ++column)
            result(row, column) -= 2 * components[row] * components[column];
    return result;
}

/// Gives a linear map the translation with which it leaves the centre where it is.
Matrix About(const Point &centre, Matrix map)
{
    const Point moved = map.TransformPoint(centre);
    map(0, 3) = centre.X - moved.X;
    map(1, 3) = centre.Y - moved.Y;
    map(2, 3) = centre.Z - moved.Z;
    return map;
}

} // namespace

Matrix RotationAbout(const Vector &axis, float angle)
{
    const auto c = static_cast<float>(std::cos(static_cast<double>(angle)));
    const auto s = static_cast<float>(std::sin(static_cast<double>(angle)));
    const float k = 1 - c;
    const auto [x, y, z] = axis;
    Matrix result;
    result(0, 0) = k * x * x + c;
    result(0, 1) = k * x * y - s * z;
    result(0, 2) = k * x * z + s * y;
    result(1, 0) = k * x * y + s * z;
    result(1, 1) = k * y * y + c;
    result(1, 2) = k * y * z - s * x;
    result(2, 0) = k * x * z - s * y;
    result(2, 1) = k * y * z + s * x;
    result(2, 2) = k * z * z + c;
    return result;
}

bool HasNoDirection(const Vector &v)
{
    return !(std::abs(v.X) > kNoLength || std::abs(v.Y) > kNoLength || std::abs(v.Z) > kNoLength);
}

Vector TurnedUp(const Matrix &matrix)
{
    Vector up{0, 1, 0};
    matrix.RotateVector(up);
    return Normalised(up);
}

Matrix Turning(const Point &centre, const Vector &a, const Vector &b)
{
    const float angle = std::acos(std::clamp(Dot(a, b), -1.f, 1.f));
    if (angle == 0)
        return {};
    const Vector axis = Cross(a, b);
    if (!HasNoDirection(axis))
        return About(centre, RotationAbout(Normalised(axis), angle));
    // Parallel vectors with an angle between them: opposite ones, if no rounding made the angle.
    return a == Opposite(b) ? About(centre, ReflectionAcross(a)) : Matrix();
}

Matrix Alignment(const Point &point, const Matrix &now, const Matrix &ahead)
{
    const Point here = now.TransformPoint(point);
    const Vector way = Minus(ahead.TransformPoint(point), here);
    return HasNoDirection(way) ? Matrix() : Turning(here, TurnedUp(now), Normalised(way));
}

Matrix LookAt(const Vector &direction)
{
    const Vector forward = NormalisedIfLong(direction);
    Vector up{0, 1, 0};
    if (forward == up || forward == Opposite(up))
        up = {-1, 0, 0};
    const Vector side = NormalisedIfLong(Cross(forward, up));
    const Vector top = NormalisedIfLong(Cross(side, forward));

    const Vector rows[3] = {side, top, Opposite(forward)};
    Matrix result;
    for (int row = 0; row < 3; ++row) {
        result(row, 0) = rows[row].X;
        result(row, 1) = rows[row].Y;
        result(row, 2) = rows[row].Z;
    }
    return result;
}

Matrix TurnTowardsTarget(AutoOrient mode, const PropertyManager &properties, int time)
{
    if (mode != AutoOrient::TowardsTarget)
        return {};
    const auto position = ValueAt<Point>(properties, "position", time);
    const auto target = ValueAt<Point>(properties, "target", time);
    if (position == target)
        return {};
    Matrix result = LookAt(Minus(target, position));
    if (!IsSingularProduct(result))
        result.Invert();
    return result;
}

int LookAheadTime(int time)
{
    constexpr int kMilliseconds = 10;
    return time > std::numeric_limits<int>::max() - kMilliseconds ? time : time + kMilliseconds;
}

} // namespace marlet::project
