#include <marlet/plugins/PluginUIPoint.h>

namespace marlet::project
{

PluginUIPoint::PluginUIPoint(std::shared_ptr<AbstractPluginUITreeNode> parent, const WideString &name,
                             const char *property, int options)
    : PluginUITreeNode(NodeType::Point, parent, name, property, options)
{
}

PluginUIPoint::~PluginUIPoint() = default;

} // namespace marlet::project
