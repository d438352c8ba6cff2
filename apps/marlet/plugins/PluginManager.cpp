#include "PluginManager.h"

#include "Plugins.h"

#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/PluginTreeCategoryNode.h>
#include <marlet/plugins/PluginTreePluginNode.h>

#include <algorithm>

namespace marlet::tool
{

using namespace project;

namespace
{

using TreeNode = std::shared_ptr<AbstractPluginTreeNode>;

TreeNode AddCategory(const TreeNode &parent, const WideString &name)
{
    TreeNode category = PluginTreeCategoryNode::Create(name);
    parent->ChildNodes().Add(category);
    return category;
}

} // namespace

PluginManager::PluginManager() : tree_(PluginTreeCategoryNode::CreateRootNode())
{
    const auto add = [this](const TreeNode &category, std::shared_ptr<AbstractPlugin> plugin) {
        category->ChildNodes().Add(PluginTreePluginNode::Create(plugin));
        plugins_.push_back(std::move(plugin));
    };
    const TreeNode effects = AddCategory(tree_, u"Effects");
    const TreeNode blur = AddCategory(effects, u"Blur");
    add(blur, MakeGaussianBlur());
    const TreeNode color = AddCategory(effects, u"Colour");
    add(color, MakeColorBalance());
    add(color, MakeLevels());
    const TreeNode stylize = AddCategory(effects, u"Stylise");
    add(stylize, MakeDropShadow());
    add(stylize, MakeDisplacement());
    const TreeNode transitions = AddCategory(tree_, u"Transitions");
    add(transitions, MakeCrossDissolve());
    add(transitions, MakeWipe());
}

std::shared_ptr<AbstractPlugin> PluginManager::FindPlugin(const kytl::KyID &id)
{
    const auto found = std::find_if(plugins_.begin(), plugins_.end(),
                                    [&](const auto &plugin) { return plugin->ID() == id; });
    return found == plugins_.end() ? nullptr : *found;
}

const std::shared_ptr<PluginManager> &Plugins()
{
    static const auto manager = std::make_shared<PluginManager>();
    return manager;
}

} // namespace marlet::tool
