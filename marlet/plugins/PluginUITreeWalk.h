#pragma once

#include <functional>

namespace marlet::project
{

class AbstractPlugin;
class AbstractPluginUITreeNode;

/// Visits the nodes of a plug-in's panel depth first, a parent before its children. The tree is the host's
/// and may have any depth or none; one that runs in a circle is visited once.
void ForEachPluginUINode(const AbstractPlugin &plugin,
                         const std::function<void(const AbstractPluginUITreeNode &)> &visit);

/// The property that a node edits, also of one that answers with a null pointer.
const char *EditedProperty(const AbstractPluginUITreeNode &node);

} // namespace marlet::project
