#include <marlet/plugins/PluginUICheckBox.h>

namespace marlet::project
{

PluginUICheckBox::PluginUICheckBox(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                                   const char *property, int options)
    : PluginUITreeNode(NodeType::CheckBox, parent, name, property, options)
{
}

PluginUICheckBox::~PluginUICheckBox() = default;

} // namespace marlet::project
