#pragma once

#include <marlet/plugins/AbstractPluginTreeNode.h>

namespace marlet::project
{

class AbstractPlugin;

/// A plug-in in the catalogue, which its manager owns. It may stand in several categories, each time as a
/// node of its own. A host that unloads plug-ins replaces the tree.
class MARLET_EXPORT PluginTreePluginNode : public AbstractPluginTreeNode
{
public:
    static std::shared_ptr<AbstractPluginTreeNode> Create(const std::shared_ptr<AbstractPlugin> &plugin);
    PluginTreePluginNode(const PluginTreePluginNode &) = delete;
    ~PluginTreePluginNode() override;

    /// An empty pointer if the plug-in is gone.
    std::shared_ptr<AbstractPlugin> Plugin() const;

    NodeType Type() override;
    /// The plug-in's own text, which is there as long as the plug-in.
    /// @throws std::logic_error if the plug-in is gone
    const WideString &Name() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;

private:
    explicit PluginTreePluginNode(const std::shared_ptr<AbstractPlugin> &plugin);

    std::weak_ptr<AbstractPlugin> plugin_;
    Children children_;
};

} // namespace marlet::project
