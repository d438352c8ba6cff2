#include <marlet/plugins/PluginUIAngle.h>

namespace marlet::project
{

struct PluginUIAngle_Impl {
    bool allowTurns;
};

PluginUIAngle::PluginUIAngle(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                             const char *property, int options, bool allowTurns)
    : PluginUITreeNode(NodeType::Angle, parent, name, property, options),
      impl_(std::make_unique<PluginUIAngle_Impl>(PluginUIAngle_Impl{allowTurns}))
{
}

PluginUIAngle::~PluginUIAngle() = default;

bool PluginUIAngle::AllowTurns() const
{
    return impl_->allowTurns;
}

} // namespace marlet::project
