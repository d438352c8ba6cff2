#pragma once

#include <marlet/animation/PropertyValue.h>

#include <cstdint>

namespace marlet::project
{

/// The cubic Bezier curve with these four control values, at t. Every curve of values is rounded in this very
/// order.
inline double CubicBezier(double p0, double p1, double p2, double p3, double t)
{
    const double u = 1 - t;
    return p0 * (u * u * u) + 3 * t * (u * u) * p1 + 3 * (t * t) * u * p2 + p3 * (t * t * t);
}

/// The value between two key frames after offset of span time units, with no handles.
/// @throws std::runtime_error if they hold different alternatives
PropertyValue StraightValue(const PropertyValue &a, const PropertyValue &b, std::int64_t span,
                            std::int64_t offset);

/// The value between two key frames at the parameter t of the curve, with the handles' offsets in value.
/// They are the same for every component.
/// @throws std::runtime_error if they hold different alternatives
PropertyValue CurvedValue(const PropertyValue &a, const PropertyValue &b, double t, double outgoing,
                          double incoming);

} // namespace marlet::project
