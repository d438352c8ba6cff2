#include <marlet/plugins/PluginUITreeWalk.h>

#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

#include <unordered_set>
#include <utility>

namespace marlet::project
{

void ForEachPluginUINode(const AbstractPlugin &plugin,
                         const std::function<void(const AbstractPluginUITreeNode &)> &visit)
{
    const std::shared_ptr<AbstractPluginUITreeNode> root = plugin.UITree();
    std::unordered_set<const AbstractPluginUITreeNode *> visited;
    std::vector<const AbstractPluginUITreeNode *> next{root.get()};
    while (!next.empty()) {
        const AbstractPluginUITreeNode *node = next.back();
        next.pop_back();
        if (node == nullptr || !visited.insert(node).second)
            continue;
        visit(*node);
        const AbstractPluginUITreeNode::Children &children = node->ChildNodes();
        for (auto child = children.rbegin(); child != children.rend(); ++child)
            next.push_back(child->get());
    }
}

const char *EditedProperty(const AbstractPluginUITreeNode &node)
{
    const char *name = node.PropertyManagerName();
    return name != nullptr ? name : "";
}

} // namespace marlet::project
