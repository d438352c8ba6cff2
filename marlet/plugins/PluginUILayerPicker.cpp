#include <marlet/plugins/PluginUILayerPicker.h>

#include <marlet/plugins/PluginUIControl_Impl.h>

namespace marlet::project
{

struct PluginUILayerPicker_Impl : PluginUIControl_Impl {
    using PluginUIControl_Impl::PluginUIControl_Impl;
};

PluginUILayerPicker::PluginUILayerPicker(std::shared_ptr<AbstractPluginUITreeNode> parent,
                                         const WideString &name, const char *property, int options)
    : impl_(std::make_unique<PluginUILayerPicker_Impl>(parent, name, property, options))
{
}

MARLET_PLUGIN_UI_CONTROL(PluginUILayerPicker, LayerPicker)

} // namespace marlet::project
