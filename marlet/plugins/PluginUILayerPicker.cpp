#include <marlet/plugins/PluginUILayerPicker.h>

namespace marlet::project
{

PluginUILayerPicker::PluginUILayerPicker(std::shared_ptr<AbstractPluginUITreeNode> parent,
                                         const WideString &name, const char *property, int options)
    : PluginUITreeNode(NodeType::LayerPicker, parent, name, property, options)
{
}

PluginUILayerPicker::~PluginUILayerPicker() = default;

} // namespace marlet::project
