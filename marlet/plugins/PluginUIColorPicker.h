#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

struct PluginUIColorPicker_Impl;

/// A control that picks a colour.
class MARLET_EXPORT PluginUIColorPicker : public AbstractPluginUITreeNode
{
public:
    PluginUIColorPicker(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                        const char *property, int options);
    PluginUIColorPicker(const PluginUIColorPicker &) = delete;
    ~PluginUIColorPicker() override;

    NodeType Type() const override;
    const WideString &Name() const override;
    std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;
    const char *PropertyManagerName() const override;
    int Options() const override;

private:
    ValuePtr<PluginUIColorPicker_Impl> impl_;
};

} // namespace marlet::project
