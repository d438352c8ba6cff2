#include <marlet/plugins/PluginUISliderInt.h>

namespace marlet::project
{

struct PluginUISliderInt_Impl {
    WideString suffix;
    int minimum;
    int maximum;
};

PluginUISliderInt::PluginUISliderInt(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                                     const WideString &suffix, const char *property, int options, int minimum,
                                     int maximum)
    : PluginUITreeNode(NodeType::SliderInt, parent, name, property, options),
      impl_(std::make_unique<PluginUISliderInt_Impl>(PluginUISliderInt_Impl{suffix, minimum, maximum}))
{
}

PluginUISliderInt::~PluginUISliderInt() = default;

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
