#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/AbstractPluginInstance.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/AbstractPluginTreeNode.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

AbstractPlugin::~AbstractPlugin() = default;

AbstractPlugin2D::~AbstractPlugin2D() = default;

AbstractPluginInstance::~AbstractPluginInstance() = default;

AbstractPluginManager::~AbstractPluginManager() = default;

AbstractPluginTreeNode::~AbstractPluginTreeNode() = default;

AbstractPluginUITreeNode::~AbstractPluginUITreeNode() = default;

} // namespace marlet::project
