#include <marlet/plugins/PluginUIColorWheels.h>

namespace marlet::project
{

struct PluginUIColorWheels_Impl {
    PluginUIColorWheels::PropertyNames names;
};

PluginUIColorWheels::PluginUIColorWheels(std::shared_ptr<AbstractPluginUITreeNode> parent,
                                         const WideString &name, int options, const PropertyNames &names)
    : PluginUITreeNode(NodeType::ColorWheels, parent, name, "", options),
      impl_(std::make_unique<PluginUIColorWheels_Impl>(PluginUIColorWheels_Impl{names}))
{
}

PluginUIColorWheels::~PluginUIColorWheels() = default;

const PluginUIColorWheels::PropertyNames &PluginUIColorWheels::Names() const
{
    return impl_->names;
}

} // namespace marlet::project
