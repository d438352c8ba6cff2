#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/AbstractPluginInstance.h>
#include <marlet/plugins/PluginUINode.h>
#include <marlet/plugins/WithoutHostOperations.h>

namespace embed
{

using namespace marlet::project;

// What all plug-ins of a host have in common. Interface is AbstractPlugin, or AbstractPlugin2D for an effect.
// The host asks nothing of them that the library does not.
template <class Interface> class PluginBase : public WithoutHostOperations<Interface>
{
public:
    using Instance = AbstractPluginInstance;
    using VersionInfo = AbstractPlugin::VersionInfo;

    PluginBase(const kytl::KyID &id, const WideString &name, const VersionInfo &version)
        : id_(id), name_(name), version_(version)
    {
    }

    const kytl::KyID &ID() const override { return id_; }
    const WideString &Name() const override { return name_; }
    const VersionInfo &Version() const override { return version_; }
    const PropertyManager &Properties() const override { return *properties_; }
    const std::shared_ptr<AbstractPluginUITreeNode> &UITree() const override { return panel_; }

    // Most plug-ins keep nothing but properties, and need none of these.
    void InstanceCreated(Instance *) override {}
    void InstanceDestroyed(Instance *) override {}
    void SerializeInstance(Instance *, void *, void *) override {}
    void DeserializeInstance(Instance *, unsigned char *, int) override {}
    void PropertyChanged(Instance *, const char *) override {}

protected:
    const std::shared_ptr<PropertyManager> properties_ = PropertyManager::Create();
    const std::shared_ptr<AbstractPluginUITreeNode> panel_ = PluginUINode::CreateTreeRoot();

private:
    kytl::KyID id_;
    WideString name_;
    VersionInfo version_;
};

} // namespace embed
