#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

struct PluginUICheckBox_Impl;

/// A check box, for a property that is on or off.
class MARLET_EXPORT PluginUICheckBox : public AbstractPluginUITreeNode
{
public:
    PluginUICheckBox(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                     const char *property, int options);
    PluginUICheckBox(const PluginUICheckBox &) = delete;
    ~PluginUICheckBox() override;

    NodeType Type() const override;
    const WideString &Name() const override;
    std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;
    const char *PropertyManagerName() const override;
    int Options() const override;

private:
    ValuePtr<PluginUICheckBox_Impl> impl_;
};

} // namespace marlet::project
