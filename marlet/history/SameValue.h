#pragma once

#include <marlet/animation/KeyFrame.h>
#include <marlet/animation/PropertyValue.h>

namespace marlet::project
{

// Equality of property values forgives a little in points, vectors, orientations and scales. What an undo has
// to put back is the same to the bit.

bool AreSameToTheBit(const PropertyValue &a, const PropertyValue &b);

/// All but the cache state.
bool AreSameToTheBit(const KeyFrame &a, const KeyFrame &b);

} // namespace marlet::project
