#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

struct PluginUITreeNode_Impl;

/// What all nodes of a panel have in common, which is all but what some controls add.
class MARLET_EXPORT PluginUITreeNode : public AbstractPluginUITreeNode
{
public:
    PluginUITreeNode(const PluginUITreeNode &) = delete;
    ~PluginUITreeNode() override;

    NodeType Type() const override;
    const WideString &Name() const override;
    std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;
    const char *PropertyManagerName() const override;
    int Options() const override;

protected:
    /// A null property counts as the empty name.
    PluginUITreeNode(NodeType type, const std::shared_ptr<AbstractPluginUITreeNode> &parent,
                     const WideString &name, const char *property, int options);

private:
    ValuePtr<PluginUITreeNode_Impl> node_;
};

} // namespace marlet::project
