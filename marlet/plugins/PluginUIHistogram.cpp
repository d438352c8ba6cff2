#include <marlet/plugins/PluginUIHistogram.h>

namespace marlet::project
{

struct PluginUIHistogram_Impl {
    PluginUIHistogram::PropertyNames rgb;
    PluginUIHistogram::PropertyNames red;
    PluginUIHistogram::PropertyNames green;
    PluginUIHistogram::PropertyNames blue;
    PluginUIHistogram::PropertyNames alpha;
};

PluginUIHistogram::PluginUIHistogram(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                                     const char *property, int options, const PropertyNames &rgb,
                                     const PropertyNames &red, const PropertyNames &green,
                                     const PropertyNames &blue, const PropertyNames &alpha)
    : PluginUITreeNode(NodeType::Histogram, parent, name, property, options),
      impl_(std::make_unique<PluginUIHistogram_Impl>(PluginUIHistogram_Impl{rgb, red, green, blue, alpha}))
{
}

PluginUIHistogram::~PluginUIHistogram() = default;

const PluginUIHistogram::PropertyNames &PluginUIHistogram::RGBPropertyNames() const
{
    return impl_->rgb;
}

const PluginUIHistogram::PropertyNames &PluginUIHistogram::RedPropertyNames() const
{
    return impl_->red;
}

const PluginUIHistogram::PropertyNames &PluginUIHistogram::GreenPropertyNames() const
{
    return impl_->green;
}

const PluginUIHistogram::PropertyNames &PluginUIHistogram::BluePropertyNames() const
{
    return impl_->blue;
}

const PluginUIHistogram::PropertyNames &PluginUIHistogram::AlphaPropertyNames() const
{
    return impl_->alpha;
}

} // namespace marlet::project
