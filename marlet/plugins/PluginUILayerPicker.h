#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

struct PluginUILayerPicker_Impl;

/// A control that picks a layer of the composition: its property holds the ID of that layer. It has no UI
/// state.
class MARLET_EXPORT PluginUILayerPicker : public AbstractPluginUITreeNode
{
public:
    PluginUILayerPicker(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                        const char *property, int options);
    PluginUILayerPicker(const PluginUILayerPicker &) = delete;
    ~PluginUILayerPicker() override;

    NodeType Type() const override;
    const WideString &Name() const override;
    std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;
    const char *PropertyManagerName() const override;
    int Options() const override;

private:
    ValuePtr<PluginUILayerPicker_Impl> impl_;
};

} // namespace marlet::project
