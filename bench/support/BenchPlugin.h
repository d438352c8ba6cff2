#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>

namespace bench
{

/// A plug-in with a property that moves, one that picks a layer, and a few bytes of its own.
class BenchPlugin : public marlet::project::AbstractPlugin
{
public:
    using Instance = marlet::project::AbstractPluginInstance *;

    static constexpr char kAmount[] = "amount";
    static constexpr char kLayer[] = "layer";

    BenchPlugin();

    const kytl::KyID &ID() const override { return id_; }
    int Kind() const override { return kFilter2D + 1; }
    const marlet::project::WideString &Name() const override { return name_; }
    const VersionInfo &Version() const override { return version_; }
    const marlet::project::PropertyManager &Properties() const override { return properties_; }
    const std::shared_ptr<marlet::project::AbstractPluginUITreeNode> &UITree() const override
    {
        return panel_;
    }
    void InstanceCreated(Instance) override {}
    void InstanceDestroyed(Instance) override {}
    void SerializeInstance(Instance instance, void *document, void *element) override;
    void DeserializeInstance(Instance, unsigned char *, int) override {}
    void PropertyChanged(Instance, const char *) override {}

    void HostOperation1() override {}
    void HostOperation2() override {}
    void HostOperation3() override {}
    void HostOperation4() override {}
    void HostOperation5() override {}
    void HostOperation6() override {}
    void HostOperation7() override {}

private:
    kytl::KyID id_ = kytl::KyID::Generate();
    marlet::project::WideString name_ = u"Blur";
    VersionInfo version_{1, 0, 0, 0};
    marlet::project::PropertyManager properties_;
    std::shared_ptr<marlet::project::AbstractPluginUITreeNode> panel_;
};

} // namespace bench
