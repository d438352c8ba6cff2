#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

struct PluginUITreeNode_Impl {
    AbstractPluginUITreeNode::NodeType type;
    std::weak_ptr<AbstractPluginUITreeNode> parent;
    WideString name;
    NarrowString propertyManagerName;
    int options;
    AbstractPluginUITreeNode::Children children;
};

PluginUITreeNode::PluginUITreeNode(NodeType type, const std::shared_ptr<AbstractPluginUITreeNode> &parent,
                                   const WideString &name, const char *property, int options)
    : node_(std::make_unique<PluginUITreeNode_Impl>(
          PluginUITreeNode_Impl{type, parent, name, property != nullptr ? property : "", options, {}}))
{
}

PluginUITreeNode::~PluginUITreeNode() = default;

AbstractPluginUITreeNode::NodeType PluginUITreeNode::Type() const
{
    return node_->type;
}

const WideString &PluginUITreeNode::Name() const
{
    return node_->name;
}

std::shared_ptr<AbstractPluginUITreeNode> PluginUITreeNode::ParentNode() const
{
    return node_->parent.lock();
}

AbstractPluginUITreeNode::Children &PluginUITreeNode::ChildNodes()
{
    return node_->children;
}

const AbstractPluginUITreeNode::Children &PluginUITreeNode::ChildNodes() const
{
    return node_->children;
}

const char *PluginUITreeNode::PropertyManagerName() const
{
    return node_->propertyManagerName.c_str();
}

int PluginUITreeNode::Options() const
{
    return node_->options;
}

} // namespace marlet::project
