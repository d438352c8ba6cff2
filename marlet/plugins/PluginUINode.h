#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

struct PluginUINode_Impl;

/// The root of a panel's tree, or a group of controls. It edits no property and has no options.
class MARLET_EXPORT PluginUINode : public AbstractPluginUITreeNode
{
public:
    /// Without a name and a parent.
    static std::shared_ptr<AbstractPluginUITreeNode> CreateTreeRoot();
    /// Whoever makes a group also adds it to the parent's children.
    static std::shared_ptr<AbstractPluginUITreeNode>
    CreatePropertyGroup(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name);
    PluginUINode(const PluginUINode &) = delete;
    ~PluginUINode() override;

    NodeType Type() const override;
    const WideString &Name() const override;
    std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;
    const char *PropertyManagerName() const override;
    int Options() const override;

private:
    explicit PluginUINode(std::unique_ptr<PluginUINode_Impl> impl);

    ValuePtr<PluginUINode_Impl> impl_;
};

} // namespace marlet::project
