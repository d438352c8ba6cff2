#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

struct PluginUISliderInt_Impl;

/// A slider for a whole number. The range is taken as it is given.
class MARLET_EXPORT PluginUISliderInt : public AbstractPluginUITreeNode
{
public:
    PluginUISliderInt(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                      const WideString &suffix, const char *property, int options, int minimum, int maximum);
    PluginUISliderInt(const PluginUISliderInt &) = delete;
    ~PluginUISliderInt() override;

    NodeType Type() const override;
    const WideString &Name() const override;
    std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;
    const char *PropertyManagerName() const override;
    int Options() const override;

    /// What stands behind the value.
    const WideString &Suffix() const;
    void MinMaxRange(int &minimum, int &maximum) const;

private:
    ValuePtr<PluginUISliderInt_Impl> impl_;
};

} // namespace marlet::project
