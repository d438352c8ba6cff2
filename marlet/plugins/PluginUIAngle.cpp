#include <marlet/plugins/PluginUIAngle.h>

#include <marlet/plugins/PluginUIControl_Impl.h>

namespace marlet::project
{

struct PluginUIAngle_Impl : PluginUIControl_Impl {
    bool allowTurns;
};

PluginUIAngle::PluginUIAngle(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                             const char *property, int options, bool allowTurns)
    : impl_(std::make_unique<PluginUIAngle_Impl>(
          PluginUIAngle_Impl{{parent, name, property, options}, allowTurns}))
{
}

MARLET_PLUGIN_UI_CONTROL(PluginUIAngle, Angle)

bool PluginUIAngle::AllowTurns() const
{
    return impl_->allowTurns;
}

} // namespace marlet::project
