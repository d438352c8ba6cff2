#pragma once

#include <marlet/project/Project.h>

#include <string>
#include <vector>

namespace guide
{

using namespace marlet::project;

std::vector<std::string> TakeChanges(const std::shared_ptr<Project> &project, const WideString &base,
                                     const WideString &theirs);

} // namespace guide
