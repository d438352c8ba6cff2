#pragma once

#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/WithoutHostOperations.h>

namespace marlet::project
{

class XmlCursor;

/// Takes the place of the plug-in of one instance that is read while the host does not have that plug-in, or
/// only in an older version. It has the name, version and properties that stand in the element, and a panel
/// of layer pickers for all properties that hold an ID. It does nothing; what else stands in the element is
/// kept by the instance, which owns it.
class StandInPlugin final : public WithoutHostOperations<AbstractPlugin>
{
public:
    /// Belongs to the element of an effect or a transition.
    /// @throws as reading the instance does
    explicit StandInPlugin(const XmlCursor &instance);

    const kytl::KyID &ID() const override { return id_; }
    int Kind() const override { return kStandIn; }
    const WideString &Name() const override { return name_; }
    const VersionInfo &Version() const override { return version_; }
    const PropertyManager &Properties() const override { return *properties_; }
    const std::shared_ptr<AbstractPluginUITreeNode> &UITree() const override { return panel_; }
    void InstanceCreated(AbstractPluginInstance *) override {}
    void InstanceDestroyed(AbstractPluginInstance *) override {}
    void SerializeInstance(AbstractPluginInstance *, void *, void *) override {}
    void DeserializeInstance(AbstractPluginInstance *, unsigned char *, int) override {}
    void PropertyChanged(AbstractPluginInstance *, const char *) override {}

private:
    kytl::KyID id_;
    WideString name_;
    VersionInfo version_;
    std::shared_ptr<PropertyManager> properties_;
    std::shared_ptr<AbstractPluginUITreeNode> panel_;
};

} // namespace marlet::project
