#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/PluginUITreeNode.h>

namespace marlet::project
{

struct PluginUIAngle_Impl;

/// A control for an angle in degrees.
class MARLET_EXPORT PluginUIAngle : public PluginUITreeNode
{
public:
    PluginUIAngle(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                  const char *property, int options, bool allowTurns);
    ~PluginUIAngle() override;

    /// Whether the control allows whole turns.
    bool AllowTurns() const;

private:
    ValuePtr<PluginUIAngle_Impl> impl_;
};

} // namespace marlet::project
