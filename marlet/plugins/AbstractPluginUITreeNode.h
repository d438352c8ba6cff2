#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

/// A node of the tree by which a plug-in describes its panel: a group, or a control that edits one property.
/// The plug-in owns the tree, which is built once and then only read. A node owns its children and refers to
/// its parent weakly; whoever makes a node also adds it to its parent's children.
class MARLET_EXPORT AbstractPluginUITreeNode
{
public:
    enum class NodeType : int {
        Root,
        PropertyGroup,
        SliderInt,
        SliderFloat,
        CheckBox,
        ComboBox,
        Point,
        Angle,
        ColorPicker,
        LayerPicker,
        ColorWheels,
        Histogram,
    };
    using Children = kytl::KyList<std::shared_ptr<AbstractPluginUITreeNode>, std::vector>;

    /// The option that hides a control at first. All other bits are the host's.
    static constexpr int kHidden = 2;

    AbstractPluginUITreeNode() = default;
    AbstractPluginUITreeNode(const AbstractPluginUITreeNode &) {}
    AbstractPluginUITreeNode &operator=(const AbstractPluginUITreeNode &) = delete;
    virtual ~AbstractPluginUITreeNode();

    virtual NodeType Type() const = 0;
    /// The label.
    virtual const WideString &Name() const = 0;
    /// An empty pointer when the parent is gone, or there is none.
    virtual std::shared_ptr<AbstractPluginUITreeNode> ParentNode() const = 0;
    virtual Children &ChildNodes() = 0;
    virtual const Children &ChildNodes() const = 0;
    /// The property that the node edits; empty if it edits none.
    virtual const char *PropertyManagerName() const = 0;
    virtual int Options() const = 0;
};

} // namespace marlet::project
