#pragma once

#include <marlet/foundation/Tolerance.h>

namespace kytl::matl
{

template <int N, class T> struct KyVector;

/// A direction or offset in the plane or in space, with the layout of a point but a type of its own. Two are
/// equal within a small tolerance, component by component.
template <class T> struct KyVector<2, T> {
    T X = 0;
    T Y = 0;

    bool operator==(const KyVector &other) const
    {
        return NearlyEqual(X, other.X, T(kPointTolerance)) && NearlyEqual(Y, other.Y, T(kPointTolerance));
    }
};

template <class T> struct KyVector<3, T> {
    T X = 0;
    T Y = 0;
    T Z = 0;

    bool operator==(const KyVector &other) const
    {
        return NearlyEqual(X, other.X, T(kPointTolerance)) && NearlyEqual(Y, other.Y, T(kPointTolerance)) &&
               NearlyEqual(Z, other.Z, T(kPointTolerance));
    }
};

/// Four components, such as those of a homogeneous point.
template <class T> struct KyVector<4, T> {
    T X = 0;
    T Y = 0;
    T Z = 0;
    T W = 0;

    bool operator==(const KyVector &other) const
    {
        return NearlyEqual(X, other.X, T(kPointTolerance)) && NearlyEqual(Y, other.Y, T(kPointTolerance)) &&
               NearlyEqual(Z, other.Z, T(kPointTolerance)) && NearlyEqual(W, other.W, T(kPointTolerance));
    }
};

} // namespace kytl::matl
