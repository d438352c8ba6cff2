#pragma once

#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

/// A check box, for a property that is on or off.
class MARLET_EXPORT PluginUICheckBox : public PluginUITreeNode
{
public:
    PluginUICheckBox(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                     const char *property, int options);
    ~PluginUICheckBox() override;
};

} // namespace marlet::project
