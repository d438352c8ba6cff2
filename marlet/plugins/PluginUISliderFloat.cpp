#include <marlet/plugins/PluginUISliderFloat.h>

#include <marlet/plugins/PluginUIControl_Impl.h>

namespace marlet::project
{

struct PluginUISliderFloat_Impl : PluginUIControl_Impl {
    WideString suffix;
    float minimum;
    float maximum;
    int decimalPlaces;
};

PluginUISliderFloat::PluginUISliderFloat(std::shared_ptr<AbstractPluginUITreeNode> parent,
                                         const WideString &name, const WideString &suffix,
                                         const char *property, int options, float minimum, float maximum,
                                         int decimalPlaces)
    : impl_(std::make_unique<PluginUISliderFloat_Impl>(PluginUISliderFloat_Impl{
          {parent, name, property, options}, suffix, minimum, maximum, decimalPlaces}))
{
}

MARLET_PLUGIN_UI_CONTROL(PluginUISliderFloat, SliderFloat)

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
