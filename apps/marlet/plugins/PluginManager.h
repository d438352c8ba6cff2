#pragma once

#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/AbstractPluginTreeNode.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <memory>
#include <vector>

namespace marlet::tool
{

/// The tool's directory of plug-ins: it makes each of them once and owns them.
class PluginManager : public project::WithoutHostOperations<project::AbstractPluginManager>
{
public:
    PluginManager();

    /// Nothing here depends on the project that uses the plug-ins.
    void AttachProject(const std::shared_ptr<project::Project> &) override {}
    std::shared_ptr<project::AbstractPlugin> FindPlugin(const kytl::KyID &id) override;

    /// The catalogue, by category.
    const std::shared_ptr<project::AbstractPluginTreeNode> &Tree() const { return tree_; }

private:
    std::vector<std::shared_ptr<project::AbstractPlugin>> plugins_;
    std::shared_ptr<project::AbstractPluginTreeNode> tree_;
};

/// The one that every project of the tool is opened with.
const std::shared_ptr<PluginManager> &Plugins();

} // namespace marlet::tool
