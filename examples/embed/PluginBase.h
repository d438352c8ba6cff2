#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/AbstractPluginInstance.h>
#include <marlet/plugins/PluginUINode.h>

namespace embed
{

using namespace marlet::project;

// What all plug-ins of a host have in common. Interface is AbstractPlugin, or AbstractPlugin2D for an effect.
template <class Interface> class PluginBase : public Interface
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

    // Places for what a host asks of its own plug-ins: the library calls none of them.
    void HostOperation1() override {}
    void HostOperation2() override {}
    void HostOperation3() override {}
    void HostOperation4() override {}
    void HostOperation5() override {}
    void HostOperation6() override {}
    void HostOperation7() override {}

protected:
    const std::shared_ptr<PropertyManager> properties_ = PropertyManager::Create();
    const std::shared_ptr<AbstractPluginUITreeNode> panel_ = PluginUINode::CreateTreeRoot();

private:
    kytl::KyID id_;
    WideString name_;
    VersionInfo version_;
};

} // namespace embed
