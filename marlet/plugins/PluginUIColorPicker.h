#pragma once

#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

/// A control that picks a colour.
class MARLET_EXPORT PluginUIColorPicker : public PluginUITreeNode
{
public:
    PluginUIColorPicker(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                        const char *property, int options);
    ~PluginUIColorPicker() override;
};

} // namespace marlet::project
