#include <marlet/plugins/PluginUIColorWheels.h>

#include <marlet/plugins/PluginUIControl_Impl.h>

namespace marlet::project
{

struct PluginUIColorWheels_Impl : PluginUIControl_Impl {
    PluginUIColorWheels::PropertyNames names;
};

PluginUIColorWheels::PluginUIColorWheels(std::shared_ptr<AbstractPluginUITreeNode> parent,
                                         const WideString &name, int options, const PropertyNames &names)
    : impl_(std::make_unique<PluginUIColorWheels_Impl>(
          PluginUIColorWheels_Impl{{parent, name, "", options}, names}))
{
}

MARLET_PLUGIN_UI_CONTROL(PluginUIColorWheels, ColorWheels)

const PluginUIColorWheels::PropertyNames &PluginUIColorWheels::Names() const
{
    return impl_->names;
}

} // namespace marlet::project
