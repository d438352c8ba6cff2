#include <marlet/foundation/Quaternion.h>

#include <algorithm>
#include <cmath>

namespace marlet::project
{

namespace
{

using Vector = kytl::matl::KyVector<3, float>;

// Single-precision values of their own: files and hosts rest on angles that come out to the last bit.
constexpr float kRadiansPerDegreeTurnedRound = -0.017453292f;
constexpr float kRightAngle = 1.5707964f;
/// The share of the squared norm from which on Y counts as a right angle, where X and Z turn about one axis.
constexpr float kGimbalLock = 0.49999f;

float DotProduct(const Quaternion &a, const Quaternion &b)
{
    return a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z;
}

Quaternion Normalised(const Quaternion &q)
{
    const float length = std::sqrt(DotProduct(q, q));
    return {q.w / length, q.x / length, q.y / length, q.z / length};
}

float HalfAngle(float degrees)
{
    return degrees * kRadiansPerDegreeTurnedRound * 0.5f;
}

} // namespace

Quaternion Quaternion::AboutAxis(const Vector &axis, float halfAngle)
{
    const auto cosine = static_cast<float>(std::cos(double(halfAngle)));
    const auto sine = static_cast<float>(std::sin(double(halfAngle)));
    return Normalised({cosine, axis.X * sine, axis.Y * sine, axis.Z * sine});
}

Quaternion Quaternion::FromOrientation(const Orientation3D &degrees)
{
    return Quaternion() * AboutAxis({1, 0, 0}, HalfAngle(degrees.X)) *
           AboutAxis({0, 1, 0}, HalfAngle(degrees.Y)) * AboutAxis({0, 0, 1}, HalfAngle(degrees.Z));
}

Quaternion Quaternion::FromMatrix(const kytl::matl::KyMatrix<4, 4, float> &m)
{
    const float trace = m(0, 0) + m(1, 1) + m(2, 2);
    // The largest component leads, so that the division loses no digits.
    if (trace > 0)
        return Normalised({trace + 1, m(2, 1) - m(1, 2), m(0, 2) - m(2, 0), m(1, 0) - m(0, 1)});
    if (m(0, 0) > m(1, 1) && m(0, 0) > m(2, 2))
        return Normalised(
            {m(2, 1) - m(1, 2), 1 + m(0, 0) - m(1, 1) - m(2, 2), m(1, 0) + m(0, 1), m(0, 2) + m(2, 0)});
    if (m(1, 1) > m(2, 2))
        return Normalised(
            {m(0, 2) - m(2, 0), m(1, 0) + m(0, 1), 1 + m(1, 1) - m(0, 0) - m(2, 2), m(2, 1) + m(1, 2)});
    return Normalised(
        {m(1, 0) - m(0, 1), m(0, 2) + m(2, 0), m(2, 1) + m(1, 2), 1 + m(2, 2) - m(0, 0) - m(1, 1)});
}

Quaternion Quaternion::operator*(const Quaternion &right) const
{
    const Vector a = {x, y, z};
    const Vector b = {right.x, right.y, right.z};
    const Vector across = kytl::matl::Cross(a, b);
    return {w * right.w - kytl::matl::Dot(a, b), w * b.X + right.w * a.X + across.X,
            w * b.Y + right.w * a.Y + across.Y, w * b.Z + right.w * a.Z + across.Z};
}

kytl::matl::KyMatrix<4, 4, float> Quaternion::ToMatrix() const
{
    kytl::matl::KyMatrix<4, 4, float> m;
    m(0, 0) = 1 - 2 * (y * y + z * z);
    m(0, 1) = 2 * (x * y - z * w);
    m(0, 2) = 2 * (x * z + y * w);
    m(1, 0) = 2 * (x * y + z * w);
    m(1, 1) = 1 - 2 * (x * x + z * z);
    m(1, 2) = 2 * (y * z - x * w);
    m(2, 0) = 2 * (x * z - y * w);
    m(2, 1) = 2 * (y * z + x * w);
    m(2, 2) = 1 - 2 * (x * x + y * y);
    return m;
}

Vector Quaternion::ToEuler() const
{
    const float test = x * z + y * w;
    const float unit = w * w + x * x + y * y + z * z;
    if (test > kGimbalLock * unit)
        return {-2 * std::atan2(x, w), kRightAngle, 0};
    if (test < -kGimbalLock * unit)
        return {2 * std::atan2(x, w), -kRightAngle, 0};
    return {std::atan2(-2 * (y * z - x * w), w * w - x * x - y * y + z * z),
            std::asin(std::clamp(2 * test, -1.0f, 1.0f)),
            std::atan2(-2 * (x * y - z * w), w * w + x * x - y * y - z * z)};
}

Quaternion Slerp(const Quaternion &from, const Quaternion &to, float s)
{
    if (s <= 0)
        return from;
    if (s >= 1)
        return to;
    float cosine = DotProduct(from, to);
    // A quaternion and its opposite are the same rotation: the nearer of the two gives the shorter arc.
    const float sign = cosine < 0 ? -1.0f : 1.0f;
    cosine *= sign;
    float fromWeight = 1 - s;
    float toWeight = s;
    if (1 - cosine > 1e-7f) {
        const float angle = std::acos(cosine);
        const float sine = std::sin(angle);
        fromWeight = std::sin((1 - s) * angle) / sine;
        toWeight = std::sin(s * angle) / sine;
    }
    toWeight *= sign;
    return {fromWeight * from.w + toWeight * to.w, fromWeight * from.x + toWeight * to.x,
            fromWeight * from.y + toWeight * to.y, fromWeight * from.z + toWeight * to.z};
}

} // namespace marlet::project
