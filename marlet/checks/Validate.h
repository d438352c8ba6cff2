#pragma once

#include <marlet/checks/Finding.h>

#include <functional>
#include <vector>

namespace marlet::project
{

class Project;
class PropertyManager;

// What can be wrong in a project at rest, found in one walk over it. Nothing of it keeps a project from being
// loaded, edited and saved. Files are looked at where nobody has asked for them yet, which for images may
// decode them.

/// Changes nothing, and may run on several threads while nothing changes the project. Project order: folders,
/// assets, compositions with their layers, the timeline. Does not throw but for want of memory.
MARLET_EXPORT std::vector<Finding> Validate(const Project &project);

/// The same for properties that a host keeps by itself, such as those of its own 3D effects. The model has
/// the types as the host makes them; properties that it does not know keep those of their defaults. Repair
/// does not see them, so there are no remedies.
MARLET_EXPORT std::vector<Finding> Validate(const PropertyManager &properties, const PropertyManager &model,
                                            const NarrowString &place);

enum class RepairMode {
    DryRun, ///< only tells
    Apply
};

/// Does what is safe about what Validate finds: clears references that dangle, names the true owner, gives
/// values the type of their property where no number is lost, puts a default or the value before in place of
/// what is no number, takes second entries of one object out of lists, gives layers IDs of their own, breaks
/// circles of parents at the first of their layers, completes links of two sides, lists instances anew. What
/// would need a choice stays as it is. Returns what was repaired, in the order of Validate. If there is a
/// function, only what it accepts is repaired.
MARLET_EXPORT std::vector<Finding> Repair(Project &project, RepairMode mode,
                                          const std::function<bool(const Finding &)> &accepts = {});

} // namespace marlet::project
