#pragma once

#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/Strings.h>

#include <optional>

namespace marlet::project
{

/// The name of an alternative, as it stands in the file.
NarrowString TypeName(const PropertyValue &value);

/// Whether all numbers of a value are neither NaN nor infinite.
bool IsFinite(const PropertyValue &value);

/// The same numbers in the alternative of a model: a number as a number, a point or a vector as one of the
/// same dimension. Integers must fit; floating values are rounded to the precision of the model. None if
/// numbers would be lost, invented or infinite.
std::optional<PropertyValue> Converted(const PropertyValue &value, const PropertyValue &model);

} // namespace marlet::project
