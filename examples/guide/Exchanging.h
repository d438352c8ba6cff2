#pragma once

#include <marlet/project/Project.h>

#include <string>
#include <vector>

namespace guide
{

using namespace marlet::project;

std::vector<std::string> ToTimeline(const std::shared_ptr<Project> &project, const WideString &folder,
                                    std::string &text);
std::shared_ptr<Project> FromTimeline(const std::string &text, const WideString &folder,
                                      const std::shared_ptr<AbstractPluginManager> &plugins);

} // namespace guide
