#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

struct PluginUISliderFloat_Impl;

/// A slider for a number. The range is taken as it is given.
class MARLET_EXPORT PluginUISliderFloat : public PluginUITreeNode
{
public:
    PluginUISliderFloat(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                        const WideString &suffix, const char *property, int options, float minimum,
                        float maximum, int decimalPlaces);
    ~PluginUISliderFloat() override;

    /// What stands behind the value.
    const WideString &Suffix() const;
    void MinMaxRange(float &minimum, float &maximum) const;
    int DecimalPlaces() const;

private:
    ValuePtr<PluginUISliderFloat_Impl> impl_;
};

} // namespace marlet::project
