#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

struct PluginUIHistogram_Impl;

/// A histogram with the levels of all channels together and of each, by five properties for each of them.
class MARLET_EXPORT PluginUIHistogram : public PluginUITreeNode
{
public:
    struct PropertyNames {
        NarrowString inputBlack;
        NarrowString inputWhite;
        NarrowString gamma;
        NarrowString outputBlack;
        NarrowString outputWhite;
    };

    PluginUIHistogram(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                      const char *property, int options, const PropertyNames &rgb, const PropertyNames &red,
                      const PropertyNames &green, const PropertyNames &blue, const PropertyNames &alpha);
    ~PluginUIHistogram() override;

    const PropertyNames &RGBPropertyNames() const;
    const PropertyNames &RedPropertyNames() const;
    const PropertyNames &GreenPropertyNames() const;
    const PropertyNames &BluePropertyNames() const;
    const PropertyNames &AlphaPropertyNames() const;

private:
    ValuePtr<PluginUIHistogram_Impl> impl_;
};

} // namespace marlet::project
