#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

struct PluginUISliderInt_Impl;

/// A slider for a whole number. The range is taken as it is given.
class MARLET_EXPORT PluginUISliderInt : public PluginUITreeNode
{
public:
    PluginUISliderInt(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                      const WideString &suffix, const char *property, int options, int minimum, int maximum);
    ~PluginUISliderInt() override;

    /// What stands behind the value.
    const WideString &Suffix() const;
    void MinMaxRange(int &minimum, int &maximum) const;

private:
    ValuePtr<PluginUISliderInt_Impl> impl_;
};

} // namespace marlet::project
