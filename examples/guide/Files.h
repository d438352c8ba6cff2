#pragma once

#include <marlet/foundation/LoadReport.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/project/Project.h>

#include <string>
#include <vector>

namespace guide
{

using namespace marlet::project;

std::shared_ptr<Project> Open(const std::string &path, const std::shared_ptr<AbstractPluginManager> &plugins);
std::shared_ptr<Project> TryOpen(const std::string &path,
                                 const std::shared_ptr<AbstractPluginManager> &plugins, std::string &why);
void Save(const Project &project, const std::string &path);
std::shared_ptr<Project> OpenAnyway(const std::string &path,
                                    const std::shared_ptr<AbstractPluginManager> &plugins,
                                    std::vector<std::string> &told);
std::shared_ptr<Project> Rescue(const std::string &path,
                                const std::shared_ptr<AbstractPluginManager> &plugins, LoadReport &report);

} // namespace guide
