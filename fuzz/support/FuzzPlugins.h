#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPluginInstance.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/PluginUILayerPicker.h>
#include <marlet/plugins/PluginUINode.h>
#include <marlet/plugins/PluginUISliderFloat.h>

#include <memory>
#include <string>
#include <vector>

namespace marlet::project
{

/// A plug-in that picks layers and keeps whatever bytes a file has for it. It counts its instances, so that
/// one that is told of no end, or of two, is noticed.
class FuzzPlugin : public AbstractPlugin
{
public:
    using Instance = AbstractPluginInstance *;

    explicit FuzzPlugin(const char *id) : id_(kytl::KyID::FromString(id))
    {
        properties_.CreateProperty("amount", 10.F, PropertyManager::Type::Animatable, nullptr);
        panel_->ChildNodes().Add(
            std::make_shared<PluginUISliderFloat>(panel_, u"Amount", u"", "amount", 0, 0.F, 100.F, 1));
        for (const char *picked : {"layer", "map"}) {
            properties_.CreateProperty(picked, kytl::KyID(), PropertyManager::Type::NotAnimatable, nullptr);
            panel_->ChildNodes().Add(std::make_shared<PluginUILayerPicker>(panel_, u"Layer", picked, 0));
        }
    }

    int Living() const { return living_; }

    const kytl::KyID &ID() const override { return id_; }
    int Kind() const override { return 1; }
    const WideString &Name() const override { return name_; }
    const VersionInfo &Version() const override { return version_; }
    const PropertyManager &Properties() const override { return properties_; }
    const std::shared_ptr<AbstractPluginUITreeNode> &UITree() const override { return panel_; }

    void InstanceCreated(Instance instance) override
    {
        ++living_;
        instance->SetInstanceData(new std::string);
    }
    void InstanceDestroyed(Instance instance) override
    {
        --living_;
        delete &BytesOf(instance);
    }
    void SerializeInstance(Instance instance, void *document, void *element) override
    {
        std::string &bytes = BytesOf(instance);
        if (!bytes.empty())
            instance->SerializeInstanceDataBytes(reinterpret_cast<unsigned char *>(bytes.data()),
                                                 static_cast<int>(bytes.size()), document, element);
    }
    void DeserializeInstance(Instance instance, unsigned char *bytes, int size) override
    {
        BytesOf(instance).assign(reinterpret_cast<const char *>(bytes), static_cast<std::size_t>(size));
    }
    void PropertyChanged(Instance, const char *) override {}

    void HostOperation1() override {}
    void HostOperation2() override {}
    void HostOperation3() override {}
    void HostOperation4() override {}
    void HostOperation5() override {}
    void HostOperation6() override {}
    void HostOperation7() override {}

private:
    static std::string &BytesOf(Instance instance)
    {
        return *static_cast<std::string *>(instance->InstanceData());
    }

    kytl::KyID id_;
    WideString name_ = u"Fuzz";
    VersionInfo version_{2, 2, 3, 4};
    PropertyManager properties_;
    std::shared_ptr<AbstractPluginUITreeNode> panel_ = PluginUINode::CreateTreeRoot();
    int living_ = 0;
};

/// Has the plug-ins that the seeds use.
class FuzzPluginManager : public AbstractPluginManager
{
public:
    std::shared_ptr<AbstractPlugin> FindPlugin(const kytl::KyID &id) override
    {
        for (const auto &plugin : plugins_)
            if (plugin->ID() == id)
                return plugin;
        return nullptr;
    }

    int LivingInstances() const
    {
        int living = 0;
        for (const auto &plugin : plugins_)
            living += plugin->Living();
        return living;
    }

    void AttachProject(const std::shared_ptr<Project> &) override {}
    void HostOperation1() override {}
    void HostOperation2() override {}
    void HostOperation3() override {}

private:
    static std::shared_ptr<FuzzPlugin> Plugin(const char *id) { return std::make_shared<FuzzPlugin>(id); }

    std::vector<std::shared_ptr<FuzzPlugin>> plugins_{
        Plugin("00000011-aaaa-4bbb-8ccc-0123456789ab"), Plugin("8e1c4a50-52d7-4f0b-9a61-1d3f70c24e01"),
        Plugin("27b9d6e3-0c48-4a95-8f32-6e5a91b4d702"), Plugin("f3605b1a-7e24-46cd-b50e-82c914a73b03"),
        Plugin("5d72e08c-1b93-4e6f-a4d8-370be56c2804"), Plugin("b04f9327-68ea-4d31-8c75-f15e09d3a605")};
};

} // namespace marlet::project
