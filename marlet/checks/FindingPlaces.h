#pragma once

#include <marlet/checks/Finding.h>
#include <marlet/foundation/TextPlace.h>

#include <optional>
#include <vector>

namespace marlet::project
{

/// Where each finding stands in the text that the project was loaded from: at the element of the property, or
/// else of the object, or else of the innermost object around it that has one. Of several objects with one ID
/// the repetition is where it is told of. None for what stands nowhere, and for a text that is no project's.
MARLET_EXPORT std::vector<std::optional<TextPlace>> PlacesInText(const std::vector<Finding> &findings,
                                                                 const WideString &text);

} // namespace marlet::project
