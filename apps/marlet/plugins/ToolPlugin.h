#pragma once

#include "PluginPanel.h"

#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/AbstractPluginInstance.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <vector>

namespace marlet::tool
{

/// What a plug-in of the tool says of itself.
struct PluginIdentity {
    kytl::KyID id;
    project::WideString name;
    project::AbstractPlugin::VersionInfo version;
};

/// A plug-in whose instances hold more than properties can.
class PrivateDataOwner
{
public:
    virtual ~PrivateDataOwner() = default;

    /// What goes into the file for an instance; nothing if the instance is as it was made.
    virtual std::vector<unsigned char>
    PrivateBytes(const project::AbstractPluginInstance &instance) const = 0;
};

/// A plug-in that consists of properties and their panel, which is all that most need. Interface is one of
/// the library's two classes of plug-ins.
template <class Interface> class ToolPlugin : public project::WithoutHostOperations<Interface>
{
public:
    using Instance = project::AbstractPluginInstance;

    ToolPlugin(PluginIdentity identity, int kind, PluginPanel panel)
        : identity_(std::move(identity)), kind_(kind), panel_(std::move(panel))
    {
    }

    const kytl::KyID &ID() const override { return identity_.id; }
    int Kind() const override { return kind_; }
    const project::WideString &Name() const override { return identity_.name; }
    const project::AbstractPlugin::VersionInfo &Version() const override { return identity_.version; }
    const project::PropertyManager &Properties() const override { return panel_.Properties(); }
    const std::shared_ptr<project::AbstractPluginUITreeNode> &UITree() const override
    {
        return panel_.Tree();
    }
    void InstanceCreated(Instance *) override {}
    void InstanceDestroyed(Instance *) override {}
    void SerializeInstance(Instance *, void *, void *) override {}
    void DeserializeInstance(Instance *, unsigned char *, int) override {}
    void PropertyChanged(Instance *, const char *) override {}

private:
    PluginIdentity identity_;
    int kind_;
    PluginPanel panel_;
};

/// An effect on flat frames. Without more it leaves their size alone.
class FilterPlugin : public ToolPlugin<project::AbstractPlugin2D>
{
public:
    FilterPlugin(PluginIdentity identity, PluginPanel panel)
        : ToolPlugin(std::move(identity), kFilter2D, std::move(panel))
    {
    }

    void FilterMargins(project::EffectInstance *effect, project::FilterSurface *surface, int width,
                       int height, float scale, float, bool, int time, int *left, int *right, int *top,
                       int *bottom) override;

protected:
    struct Margins {
        int left = 0;
        int right = 0;
        int top = 0;
        int bottom = 0;
    };

    /// At full size, in pixels; the time is in milliseconds of the effect's properties.
    virtual Margins MarginsAtTime(const project::PropertyManager &properties, int time) const;

    /// The value of a float property, or what stands in the plug-in's own table if a file brought another
    /// type.
    float FloatAtTime(const project::PropertyManager &properties, const char *name, int time) const;
    /// The same for the menus and check boxes, which do not animate.
    template <class T> T Static(const project::PropertyManager &properties, const char *name) const
    {
        const T *value = boost::get<T>(&properties.StaticValue(name));
        return value ? *value : boost::get<T>(Properties().DefaultValue(name));
    }
    /// Rounds up to whole pixels, within what a frame can grow by.
    static int Pixels(float length);
};

/// What leads from one picture to the next. Its properties are those of the moment, and the progress from 0
/// to 1 is the host's.
class TransitionPlugin : public ToolPlugin<project::AbstractPlugin>
{
public:
    static constexpr int kTransition = 1;

    TransitionPlugin(PluginIdentity identity, PluginPanel panel)
        : ToolPlugin(std::move(identity), kTransition, std::move(panel))
    {
    }
};

} // namespace marlet::tool
