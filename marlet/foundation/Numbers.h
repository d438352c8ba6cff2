#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>

namespace marlet::project
{

/// The integer part of a floating value: towards zero, at the limits of Integer where it lies beyond them, 0
/// for NaN.
template <class Integer, class Real> Integer Truncate(Real value)
{
    static_assert(std::is_integral_v<Integer> && std::is_floating_point_v<Real>);
    // The limits as the nearest powers of two, since the largest integers are no floating values.
    constexpr Real low = static_cast<Real>(std::numeric_limits<Integer>::min());
    const Real end = std::ldexp(Real(1), std::numeric_limits<Integer>::digits);
    if (std::isnan(value))
        return 0;
    if (value >= end)
        return std::numeric_limits<Integer>::max();
    if (value <= low)
        return std::numeric_limits<Integer>::min();
    return static_cast<Integer>(value);
}

/// The integer part of a floating value in the arithmetic of an unsigned type, which wraps; 0 for NaN.
template <class Unsigned> Unsigned TruncateWrapping(double value)
{
    static_assert(std::is_unsigned_v<Unsigned>);
    return static_cast<Unsigned>(Truncate<std::int64_t>(value));
}

/// The nearest int: what frames that were added or subtracted in 64 bits come to.
inline int Saturate(std::int64_t value)
{
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

/// The nearest integer, halves away from zero.
inline double RoundHalfAway(double value)
{
    return value > 0 ? std::floor(value + 0.5) : std::ceil(value - 0.5);
}

} // namespace marlet::project
