#include <marlet/plugins/PluginUINode.h>

namespace marlet::project
{

using NodePtr = std::shared_ptr<AbstractPluginUITreeNode>;

struct PluginUINode_Impl {
    AbstractPluginUITreeNode::NodeType type;
    WideString name;
    std::weak_ptr<AbstractPluginUITreeNode> parent;
    AbstractPluginUITreeNode::Children children;
};

PluginUINode::PluginUINode(std::unique_ptr<PluginUINode_Impl> impl) : impl_(std::move(impl))
{
}

PluginUINode::~PluginUINode() = default;

NodePtr PluginUINode::CreateTreeRoot()
{
    return NodePtr(
        new PluginUINode(std::make_unique<PluginUINode_Impl>(PluginUINode_Impl{NodeType::Root, {}, {}, {}})));
}

NodePtr PluginUINode::CreatePropertyGroup(NodePtr parent, const WideString &name)
{
    return NodePtr(new PluginUINode(std::make_unique<PluginUINode_Impl>(
        PluginUINode_Impl{NodeType::PropertyGroup, name, std::move(parent), {}})));
}

AbstractPluginUITreeNode::NodeType PluginUINode::Type() const
{
    return impl_->type;
}

const WideString &PluginUINode::Name() const
{
    return impl_->name;
}

NodePtr PluginUINode::ParentNode() const
{
    return impl_->parent.lock();
}

AbstractPluginUITreeNode::Children &PluginUINode::ChildNodes()
{
    return impl_->children;
}

const AbstractPluginUITreeNode::Children &PluginUINode::ChildNodes() const
{
    return impl_->children;
}

const char *PluginUINode::PropertyManagerName() const
{
    return "";
}

int PluginUINode::Options() const
{
    return 0;
}

} // namespace marlet::project
