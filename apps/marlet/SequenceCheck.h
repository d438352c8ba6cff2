#pragma once

#include "ProjectCheck.h"

namespace marlet::tool
{

/// What in the sequence, if there is one, leads nowhere, is one-sided or out of step, and where objects are
/// in one another's way.
std::vector<Finding> CheckSequence(const project::Project &project);

} // namespace marlet::tool
