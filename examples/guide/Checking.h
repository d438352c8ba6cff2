#pragma once

#include <marlet/project/Project.h>

#include <string>
#include <vector>

namespace guide
{

using namespace marlet::project;

std::vector<std::string> Problems(const Project &project);
std::vector<std::string> RepairReferences(Project &project);

} // namespace guide
