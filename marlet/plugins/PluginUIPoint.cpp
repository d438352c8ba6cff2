#include <marlet/plugins/PluginUIPoint.h>

#include <marlet/plugins/PluginUIControl_Impl.h>

namespace marlet::project
{

struct PluginUIPoint_Impl : PluginUIControl_Impl {
    using PluginUIControl_Impl::PluginUIControl_Impl;
};

PluginUIPoint::PluginUIPoint(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                             const char *property, int options)
    : impl_(std::make_unique<PluginUIPoint_Impl>(parent, name, property, options))
{
}

MARLET_PLUGIN_UI_CONTROL(PluginUIPoint, Point)

} // namespace marlet::project
