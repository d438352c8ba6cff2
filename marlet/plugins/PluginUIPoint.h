#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

struct PluginUIPoint_Impl;

/// A control that picks a point of the picture.
class MARLET_EXPORT PluginUIPoint : public AbstractPluginUITreeNode
{
public:
    PluginUIPoint(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                  const char *property, int options);
    PluginUIPoint(const PluginUIPoint &) = delete;
    ~PluginUIPoint() override;

    NodeType Type() const override;
    const WideString &Name() const override;
    std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;
    const char *PropertyManagerName() const override;
    int Options() const override;

private:
    ValuePtr<PluginUIPoint_Impl> impl_;
};

} // namespace marlet::project
