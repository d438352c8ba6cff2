#pragma once

#include <marlet/foundation/Tolerance.h>

namespace marlet::project
{

/// Rotations about three axes, in degrees. Two are equal within a tolerance of 1e-5, component by component.
struct Orientation3D {
    float X = 0;
    float Y = 0;
    float Z = 0;

    bool operator==(const Orientation3D &other) const
    {
        return kytl::NearlyEqual(X, other.X, kytl::kPointTolerance) &&
               kytl::NearlyEqual(Y, other.Y, kytl::kPointTolerance) &&
               kytl::NearlyEqual(Z, other.Z, kytl::kPointTolerance);
    }
};

} // namespace marlet::project
