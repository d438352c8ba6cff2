#pragma once

#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

/// The root of a panel's tree, or a group of controls. It edits no property and has no options.
class MARLET_EXPORT PluginUINode : public PluginUITreeNode
{
public:
    /// Without a name and a parent.
    static std::shared_ptr<AbstractPluginUITreeNode> CreateTreeRoot();
    /// Whoever makes a group also adds it to the parent's children.
    static std::shared_ptr<AbstractPluginUITreeNode>
    CreatePropertyGroup(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name);
    ~PluginUINode() override;

private:
    PluginUINode(NodeType type, const std::shared_ptr<AbstractPluginUITreeNode> &parent,
                 const WideString &name);
};

} // namespace marlet::project
