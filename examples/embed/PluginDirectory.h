#pragma once

#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <vector>

namespace embed
{

using namespace marlet::project;

// The host's plug-ins, which live as long as the directory.
class PluginDirectory : public WithoutHostOperations<AbstractPluginManager>
{
public:
    void Add(std::shared_ptr<AbstractPlugin> plugin) { plugins_.push_back(std::move(plugin)); }

    std::shared_ptr<AbstractPlugin> FindPlugin(const kytl::KyID &id) override
    {
        for (const auto &plugin : plugins_)
            if (plugin->ID() == id)
                return plugin;
        return nullptr;
    }
    void AttachProject(const std::shared_ptr<Project> &) override {}

private:
    std::vector<std::shared_ptr<AbstractPlugin>> plugins_;
};

} // namespace embed
