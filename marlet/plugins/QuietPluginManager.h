#pragma once

#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <memory>
#include <utility>

namespace marlet::project
{

/// Hands out the plug-ins of the host's manager, which is not told of a project that is read aside, or of one
/// that is not complete yet.
class QuietPluginManager final : public WithoutHostOperations<AbstractPluginManager>
{
public:
    explicit QuietPluginManager(std::shared_ptr<AbstractPluginManager> manager) : manager_(std::move(manager))
    {
    }
    /// Null for a null manager.
    static std::shared_ptr<QuietPluginManager> Of(const std::shared_ptr<AbstractPluginManager> &manager)
    {
        return manager ? std::make_shared<QuietPluginManager>(manager) : nullptr;
    }

    void AttachProject(const std::shared_ptr<Project> &) override {}
    std::shared_ptr<AbstractPlugin> FindPlugin(const kytl::KyID &id) override
    {
        return manager_->FindPlugin(id);
    }

private:
    std::shared_ptr<AbstractPluginManager> manager_;
};

} // namespace marlet::project
