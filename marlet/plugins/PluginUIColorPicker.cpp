#include <marlet/plugins/PluginUIColorPicker.h>

#include <marlet/plugins/PluginUIControl_Impl.h>

namespace marlet::project
{

struct PluginUIColorPicker_Impl : PluginUIControl_Impl {
    using PluginUIControl_Impl::PluginUIControl_Impl;
};

PluginUIColorPicker::PluginUIColorPicker(std::shared_ptr<AbstractPluginUITreeNode> parent,
                                         const WideString &name, const char *property, int options)
    : impl_(std::make_unique<PluginUIColorPicker_Impl>(parent, name, property, options))
{
}

MARLET_PLUGIN_UI_CONTROL(PluginUIColorPicker, ColorPicker)

} // namespace marlet::project
