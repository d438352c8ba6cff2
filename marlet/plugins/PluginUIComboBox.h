#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

struct PluginUIComboBox_Impl;

/// A menu: each item stands for a value of the property.
class MARLET_EXPORT PluginUIComboBox : public AbstractPluginUITreeNode
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
    PluginUIComboBox(const PluginUIComboBox &) = delete;
    ~PluginUIComboBox() override;

    NodeType Type() const override;
    const WideString &Name() const override;
    std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;
    const char *PropertyManagerName() const override;
    int Options() const override;

    const std::vector<MenuItem> &MenuItems() const;

private:
    ValuePtr<PluginUIComboBox_Impl> impl_;
};

} // namespace marlet::project
