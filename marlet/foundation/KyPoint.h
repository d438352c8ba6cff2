#pragma once

#include <marlet/foundation/Tolerance.h>

namespace kytl::matl
{

template <int N, class T> struct KyPoint;

/// A point in the plane or in space, with the layout of a vector but a type of its own. Two are equal within
/// a small tolerance, component by component.
template <class T> struct KyPoint<2, T> {
    T X = 0;
    T Y = 0;

    bool operator==(const KyPoint &other) const
    {
        return NearlyEqual(X, other.X, T(kPointTolerance)) && NearlyEqual(Y, other.Y, T(kPointTolerance));
    }
};

template <class T> struct KyPoint<3, T> {
    T X = 0;
    T Y = 0;
    T Z = 0;

    bool operator==(const KyPoint &other) const
    {
        return NearlyEqual(X, other.X, T(kPointTolerance)) && NearlyEqual(Y, other.Y, T(kPointTolerance)) &&
               NearlyEqual(Z, other.Z, T(kPointTolerance));
    }
};

} // namespace kytl::matl
