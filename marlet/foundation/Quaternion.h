#pragma once

#include <marlet/foundation/KyMatrix.h>
#include <marlet/foundation/Orientation3D.h>

namespace marlet::project
{

/// The quaternion (w, x, y, z) of a rotation, in single precision. Internal: hosts see angles and matrices.
struct Quaternion {
    float w = 1;
    float x = 0;
    float y = 0;
    float z = 0;

    /// The rotation about a unit axis, given by half its angle in radians. Sine and cosine are taken in
    /// double.
    static Quaternion AboutAxis(const kytl::matl::KyVector<3, float> &axis, float halfAngle);

    /// X, then Y, then Z, each by its angle in degrees with the sign turned round.
    static Quaternion FromOrientation(const Orientation3D &degrees);

    /// The unit quaternion of a rotation matrix.
    static Quaternion FromMatrix(const kytl::matl::KyMatrix<4, 4, float> &rotation);

    /// The Hamilton product. It is not normalised.
    Quaternion operator*(const Quaternion &right) const;

    kytl::matl::KyMatrix<4, 4, float> ToMatrix() const;

    /// Angles in radians with R = Rx(X) * Ry(Y) * Rz(Z).
    kytl::matl::KyVector<3, float> ToEuler() const;
};

/// Spherical linear interpolation along the shorter arc; s is clamped to 0..1. The result is not normalised.
/// Shoemake, "Animating rotation with quaternion curves", SIGGRAPH 1985.
Quaternion Slerp(const Quaternion &from, const Quaternion &to, float s);

} // namespace marlet::project
