#include <marlet/plugins/PluginUIColorPicker.h>

namespace marlet::project
{

PluginUIColorPicker::PluginUIColorPicker(std::shared_ptr<AbstractPluginUITreeNode> parent,
                                         const WideString &name, const char *property, int options)
    : PluginUITreeNode(NodeType::ColorPicker, parent, name, property, options)
{
}

PluginUIColorPicker::~PluginUIColorPicker() = default;

} // namespace marlet::project
