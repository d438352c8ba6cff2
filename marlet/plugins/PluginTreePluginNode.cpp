#include <marlet/plugins/PluginTreePluginNode.h>

#include <marlet/plugins/AbstractPlugin.h>

#include <stdexcept>

namespace marlet::project
{

PluginTreePluginNode::PluginTreePluginNode(const std::shared_ptr<AbstractPlugin> &plugin) : plugin_(plugin)
{
}

PluginTreePluginNode::~PluginTreePluginNode() = default;

std::shared_ptr<AbstractPluginTreeNode>
PluginTreePluginNode::Create(const std::shared_ptr<AbstractPlugin> &plugin)
{
    return std::shared_ptr<AbstractPluginTreeNode>(new PluginTreePluginNode(plugin));
}

std::shared_ptr<AbstractPlugin> PluginTreePluginNode::Plugin() const
{
    return plugin_.lock();
}

AbstractPluginTreeNode::NodeType PluginTreePluginNode::Type()
{
    return NodeType::Plugin;
}

const WideString &PluginTreePluginNode::Name() const
{
    const std::shared_ptr<AbstractPlugin> plugin = Plugin();
    if (!plugin)
        throw std::logic_error("The plug-in of a node of the plug-in tree is gone");
    return plugin->Name();
}

AbstractPluginTreeNode::Children &PluginTreePluginNode::ChildNodes()
{
    return children_;
}

const AbstractPluginTreeNode::Children &PluginTreePluginNode::ChildNodes() const
{
    return children_;
}

} // namespace marlet::project
