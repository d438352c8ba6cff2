#pragma once

#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace marlet::project
{

/// What every control of a panel holds.
struct PluginUIControl_Impl {
    PluginUIControl_Impl(const std::shared_ptr<AbstractPluginUITreeNode> &parentNode, const WideString &label,
                         const char *property, int flags)
        : parent(parentNode),
          name(label),
          propertyManagerName(property != nullptr ? property : ""),
          options(flags)
    {
    }

    std::weak_ptr<AbstractPluginUITreeNode> parent;
    WideString name;
    NarrowString propertyManagerName;
    int options;
    AbstractPluginUITreeNode::Children children;
};

} // namespace marlet::project

/// Defines what the class of a control overrides. A macro, since each of them derives from the interface
/// itself and has to define all of it.
#define MARLET_PLUGIN_UI_CONTROL(Class, type)                                                                \
    Class::~Class() = default;                                                                               \
    AbstractPluginUITreeNode::NodeType Class::Type() const                                                   \
    {                                                                                                        \
        return NodeType::type;                                                                               \
    }                                                                                                        \
    const WideString &Class::Name() const                                                                    \
    {                                                                                                        \
        return impl_->name;                                                                                  \
    }                                                                                                        \
    std::shared_ptr<AbstractPluginUITreeNode> Class::ParentNode() const                                      \
    {                                                                                                        \
        return impl_->parent.lock();                                                                         \
    }                                                                                                        \
    AbstractPluginUITreeNode::Children &Class::ChildNodes()                                                  \
    {                                                                                                        \
        return impl_->children;                                                                              \
    }                                                                                                        \
    const AbstractPluginUITreeNode::Children &Class::ChildNodes() const                                      \
    {                                                                                                        \
        return impl_->children;                                                                              \
    }                                                                                                        \
    const char *Class::PropertyManagerName() const                                                           \
    {                                                                                                        \
        return impl_->propertyManagerName.c_str();                                                           \
    }                                                                                                        \
    int Class::Options() const                                                                               \
    {                                                                                                        \
        return impl_->options;                                                                               \
    }
