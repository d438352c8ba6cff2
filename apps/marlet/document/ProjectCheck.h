#pragma once

#include <marlet/checks/Finding.h>

#include <vector>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// What the library finds, and behind it what is wrong with the tool's own 3D effects, of which the library
/// knows nothing.
std::vector<project::Finding> CheckProject(const project::Project &project);

} // namespace marlet::tool
