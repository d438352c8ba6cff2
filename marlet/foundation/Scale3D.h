#pragma once

#include <marlet/foundation/Tolerance.h>

namespace marlet::project
{

/// A scale along three axes, in percent. Two are equal within a tolerance of 1e-12, component by component.
struct Scale3D {
    double X = 100;
    double Y = 100;
    double Z = 100;

    bool operator==(const Scale3D &other) const
    {
        return kytl::NearlyEqual(X, other.X, kytl::kRatioTolerance) &&
               kytl::NearlyEqual(Y, other.Y, kytl::kRatioTolerance) &&
               kytl::NearlyEqual(Z, other.Z, kytl::kRatioTolerance);
    }
};

} // namespace marlet::project
