#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

struct PluginUIComboBox_Impl;

/// A menu: each item stands for a value of the property.
class MARLET_EXPORT PluginUIComboBox : public PluginUITreeNode
{
public:
    struct MenuItem {
        WideString text;
        int value;
    };

    /// The texts of the items are parted by "|" and may be empty; there are at least as many values as items.
    /// @throws std::invalid_argument if there are no values at all
    PluginUIComboBox(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                     const char *property, int options, const WideString &items, const int *values);
    ~PluginUIComboBox() override;

    const std::vector<MenuItem> &MenuItems() const;

private:
    ValuePtr<PluginUIComboBox_Impl> impl_;
};

} // namespace marlet::project
