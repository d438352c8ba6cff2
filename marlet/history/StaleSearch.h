#pragma once

#include <marlet/history/EditedPart.h>

#include <vector>

namespace marlet::project
{

class Project;

/// The frames that changes make stale, by what the project is now and where things stood before.
std::vector<StaleFrames> FindStaleFrames(const Project &project, const std::vector<ObjectChange> &changes,
                                         const std::vector<ChangeList::FormerFrames> &former);

} // namespace marlet::project
