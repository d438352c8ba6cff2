#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

/// A node of the catalogue from which the user picks an effect or a transition. The host builds the tree and
/// walks it; the library only supplies the nodes. A node owns its children and knows no parent.
class MARLET_EXPORT AbstractPluginTreeNode
{
public:
    enum class NodeType : int { Root, Category, Plugin };
    using Children = kytl::KyList<std::shared_ptr<AbstractPluginTreeNode>, std::vector>;

    AbstractPluginTreeNode() = default;
    AbstractPluginTreeNode(const AbstractPluginTreeNode &) {}
    AbstractPluginTreeNode &operator=(const AbstractPluginTreeNode &) = delete;
    virtual ~AbstractPluginTreeNode();

    virtual NodeType Type() = 0;
    virtual const WideString &Name() const = 0;
    virtual Children &ChildNodes() = 0;
    virtual const Children &ChildNodes() const = 0;
};

} // namespace marlet::project
