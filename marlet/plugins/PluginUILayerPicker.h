#pragma once

#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

/// A control that picks a layer of the composition: its property holds the ID of that layer. It has no UI
/// state.
class MARLET_EXPORT PluginUILayerPicker : public PluginUITreeNode
{
public:
    PluginUILayerPicker(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                        const char *property, int options);
    ~PluginUILayerPicker() override;
};

} // namespace marlet::project
