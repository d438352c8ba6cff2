#pragma once

#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

/// A control that picks a point of the picture.
class MARLET_EXPORT PluginUIPoint : public PluginUITreeNode
{
public:
    PluginUIPoint(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                  const char *property, int options);
    ~PluginUIPoint() override;
};

} // namespace marlet::project
