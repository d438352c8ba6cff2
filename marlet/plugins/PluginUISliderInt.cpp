#include <marlet/plugins/PluginUISliderInt.h>

#include <marlet/plugins/PluginUIControl_Impl.h>

namespace marlet::project
{

struct PluginUISliderInt_Impl : PluginUIControl_Impl {
    WideString suffix;
    int minimum;
    int maximum;
};

PluginUISliderInt::PluginUISliderInt(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                                     const WideString &suffix, const char *property, int options, int minimum,
                                     int maximum)
    : impl_(std::make_unique<PluginUISliderInt_Impl>(
          PluginUISliderInt_Impl{{parent, name, property, options}, suffix, minimum, maximum}))
{
}

MARLET_PLUGIN_UI_CONTROL(PluginUISliderInt, SliderInt)

const WideString &PluginUISliderInt::Suffix() const
{
    return impl_->suffix;
}

void PluginUISliderInt::MinMaxRange(int &minimum, int &maximum) const
{
    minimum = impl_->minimum;
    maximum = impl_->maximum;
}

} // namespace marlet::project
