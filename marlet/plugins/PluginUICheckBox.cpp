#include <marlet/plugins/PluginUICheckBox.h>

#include <marlet/plugins/PluginUIControl_Impl.h>

namespace marlet::project
{

struct PluginUICheckBox_Impl : PluginUIControl_Impl {
    using PluginUIControl_Impl::PluginUIControl_Impl;
};

PluginUICheckBox::PluginUICheckBox(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                                   const char *property, int options)
    : impl_(std::make_unique<PluginUICheckBox_Impl>(parent, name, property, options))
{
}

MARLET_PLUGIN_UI_CONTROL(PluginUICheckBox, CheckBox)

} // namespace marlet::project
