#pragma once

#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/project/Project.h>

#include <string>

namespace guide
{

using namespace marlet::project;

std::shared_ptr<Project> Open(const std::string &path, const std::shared_ptr<AbstractPluginManager> &plugins);
std::shared_ptr<Project> TryOpen(const std::string &path,
                                 const std::shared_ptr<AbstractPluginManager> &plugins, std::string &why);
void Save(const Project &project, const std::string &path);

} // namespace guide
