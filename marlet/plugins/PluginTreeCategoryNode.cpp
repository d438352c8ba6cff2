#include <marlet/plugins/PluginTreeCategoryNode.h>

namespace marlet::project
{

PluginTreeCategoryNode::PluginTreeCategoryNode(NodeType type, const WideString &name)
    : name_(name), type_(type)
{
}

PluginTreeCategoryNode::~PluginTreeCategoryNode() = default;

std::shared_ptr<AbstractPluginTreeNode> PluginTreeCategoryNode::CreateRootNode()
{
    return std::shared_ptr<AbstractPluginTreeNode>(new PluginTreeCategoryNode(NodeType::Root, u"Root"));
}

std::shared_ptr<AbstractPluginTreeNode> PluginTreeCategoryNode::Create(const WideString &name)
{
    return std::shared_ptr<AbstractPluginTreeNode>(new PluginTreeCategoryNode(NodeType::Category, name));
}

AbstractPluginTreeNode::NodeType PluginTreeCategoryNode::Type()
{
    return type_;
}

const WideString &PluginTreeCategoryNode::Name() const
{
    return name_;
}

AbstractPluginTreeNode::Children &PluginTreeCategoryNode::ChildNodes()
{
    return children_;
}

const AbstractPluginTreeNode::Children &PluginTreeCategoryNode::ChildNodes() const
{
    return children_;
}

} // namespace marlet::project
