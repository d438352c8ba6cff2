#include <marlet/plugins/PluginUISliderFloat.h>

namespace marlet::project
{

struct PluginUISliderFloat_Impl {
    WideString suffix;
    float minimum;
    float maximum;
    int decimalPlaces;
};

PluginUISliderFloat::PluginUISliderFloat(std::shared_ptr<AbstractPluginUITreeNode> parent,
                                         const WideString &name, const WideString &suffix,
                                         const char *property, int options, float minimum, float maximum,
                                         int decimalPlaces)
    : PluginUITreeNode(NodeType::SliderFloat, parent, name, property, options),
      impl_(std::make_unique<PluginUISliderFloat_Impl>(
          PluginUISliderFloat_Impl{suffix, minimum, maximum, decimalPlaces}))
{
}

PluginUISliderFloat::~PluginUISliderFloat() = default;

const WideString &PluginUISliderFloat::Suffix() const
{
    return impl_->suffix;
}

void PluginUISliderFloat::MinMaxRange(float &minimum, float &maximum) const
{
    minimum = impl_->minimum;
    maximum = impl_->maximum;
}

int PluginUISliderFloat::DecimalPlaces() const
{
    return impl_->decimalPlaces;
}

} // namespace marlet::project
