#pragma once

#include <algorithm>
#include <cmath>

namespace kytl
{

/// Whether two numbers are equal within a tolerance that grows with the smaller of their magnitudes:
/// |a - b| <= min(|a| + 1, |b| + 1) * tolerance.
template <class T> bool NearlyEqual(T a, T b, T tolerance)
{
    return std::abs(a - b) <= std::min(std::abs(a) + T(1), std::abs(b) + T(1)) * tolerance;
}

/// The tolerance of points, vectors and angles.
constexpr float kPointTolerance = 1e-5f;
/// The tolerance of scales, rates and ratios.
constexpr double kRatioTolerance = 1e-12;

} // namespace kytl
