#pragma once

#include <marlet/plugins/AbstractPluginTreeNode.h>

namespace marlet::project
{

/// The root of the catalogue, or a category of plug-ins and further categories.
class MARLET_EXPORT PluginTreeCategoryNode : public AbstractPluginTreeNode
{
public:
    /// The name of the root is "Root".
    static std::shared_ptr<AbstractPluginTreeNode> CreateRootNode();
    static std::shared_ptr<AbstractPluginTreeNode> Create(const WideString &name);
    PluginTreeCategoryNode(const PluginTreeCategoryNode &) = delete;
    ~PluginTreeCategoryNode() override;

    NodeType Type() override;
    const WideString &Name() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;

private:
    PluginTreeCategoryNode(NodeType type, const WideString &name);

    WideString name_;
    Children children_;
    NodeType type_;
};

} // namespace marlet::project
