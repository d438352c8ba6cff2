#pragma once

#include <marlet/animation/PropertyValue.h>

#include <optional>
#include <vector>

namespace marlet::project
{

/// The numbers of which a value consists; none for a value that never changes between two key frames.
std::vector<double> ComponentsOf(const PropertyValue &value);

/// By how much all components differ alike from one value to the other; nothing if they do not. So it is
/// what one handle can say of all of them.
std::optional<double> CommonRise(const PropertyValue &from, const PropertyValue &to);

/// The largest difference of a component. Angles of an orientation differ by a half turn at most. What has
/// no components is the same or infinitely far away, as are two alternatives.
double Deviation(const PropertyValue &a, const PropertyValue &b);

} // namespace marlet::project
