#include <marlet/plugins/PluginUINode.h>

namespace marlet::project
{

using NodePtr = std::shared_ptr<AbstractPluginUITreeNode>;

PluginUINode::PluginUINode(NodeType type, const NodePtr &parent, const WideString &name)
    : PluginUITreeNode(type, parent, name, "", 0)
{
}

PluginUINode::~PluginUINode() = default;

NodePtr PluginUINode::CreateTreeRoot()
{
    return NodePtr(new PluginUINode(NodeType::Root, nullptr, {}));
}

NodePtr PluginUINode::CreatePropertyGroup(NodePtr parent, const WideString &name)
{
    return NodePtr(new PluginUINode(NodeType::PropertyGroup, parent, name));
}

} // namespace marlet::project
