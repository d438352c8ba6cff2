#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

struct PluginUIAngle_Impl;

/// A control for an angle in degrees.
class MARLET_EXPORT PluginUIAngle : public AbstractPluginUITreeNode
{
public:
    PluginUIAngle(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                  const char *property, int options, bool allowTurns);
    PluginUIAngle(const PluginUIAngle &) = delete;
    ~PluginUIAngle() override;

    NodeType Type() const override;
    const WideString &Name() const override;
    std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const override;
    Children &ChildNodes() override;
    const Children &ChildNodes() const override;
    const char *PropertyManagerName() const override;
    int Options() const override;

    /// Whether the control allows whole turns.
    bool AllowTurns() const;

private:
    ValuePtr<PluginUIAngle_Impl> impl_;
};

} // namespace marlet::project
