#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/AbstractPluginInstance.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/FilterSurface.h>
#include <marlet/plugins/PluginUICheckBox.h>
#include <marlet/plugins/PluginUILayerPicker.h>
#include <marlet/plugins/PluginUINode.h>
#include <marlet/plugins/PluginUISliderFloat.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <functional>
#include <stdexcept>
#include <vector>

namespace marlet::test
{

using namespace marlet::project;
using kytl::KyID;

/// A plug-in that keeps a text of its own for each instance, notes the calls that it gets, and fails on
/// demand. A text goes with its instance, so that each that is lost or freed twice is noticed. Its panel
/// shows "amount", hides "smooth" and picks "layer". As a filter it widens frames by 10, 20, 3 and 4 pixels.
class TestPlugin : public WithoutHostOperations<AbstractPlugin2D>
{
public:
    using Instance = AbstractPluginInstance *;

    KyID id = KyID::Generate();
    WideString name = u"Blur";
    int kind = kFilter2D + 1;
    VersionInfo version{1, 2, 3, 4};
    PropertyManager properties;
    std::shared_ptr<AbstractPluginUITreeNode> panel = PluginUINode::CreateTreeRoot();

    std::vector<NarrowString> calls;
    /// The numbers that each FilterMargins was told.
    std::vector<std::vector<double>> filtered;
    /// The call that throws; all but "created" have done their work by then.
    NarrowString failing;
    /// Runs in SerializeInstance behind the plug-in's own work.
    std::function<void(Instance, void *document, void *element)> whenSaved;
    /// Runs in InstanceCreated.
    std::function<void(Instance)> whenCreated;
    /// What InstanceCreated sets as their data.
    void *dataOfNew = nullptr;
    /// Instances that were created and not destroyed yet.
    int living = 0;

    TestPlugin()
    {
        properties.CreateProperty("amount", 10.f, PropertyManager::Type::Animatable, nullptr);
        properties.CreateProperty("smooth", true, PropertyManager::Type::NotAnimatable, nullptr);
        properties.CreateProperty("layer", KyID(), PropertyManager::Type::NotAnimatable, nullptr);
        panel->ChildNodes().Add(
            std::make_shared<PluginUISliderFloat>(panel, u"Amount", u" px", "amount", 0, 0.f, 100.f, 1));
        panel->ChildNodes().Add(std::make_shared<PluginUICheckBox>(panel, u"Smooth", "smooth",
                                                                   int{AbstractPluginUITreeNode::kHidden}));
        panel->ChildNodes().Add(std::make_shared<PluginUILayerPicker>(panel, u"Layer", "layer", 0));
    }

    /// An instance's own text.
    static NarrowString &Text(AbstractPluginInstance &instance)
    {
        if (instance.InstanceData() == nullptr)
            instance.SetInstanceData(new NarrowString);
        return *static_cast<NarrowString *>(instance.InstanceData());
    }

    const KyID &ID() const override { return id; }
    int Kind() const override { return kind; }
    const WideString &Name() const override { return name; }
    const VersionInfo &Version() const override { return version; }
    const PropertyManager &Properties() const override { return properties; }
    const std::shared_ptr<AbstractPluginUITreeNode> &UITree() const override { return panel; }

    void InstanceCreated(Instance instance) override
    {
        if (whenCreated)
            whenCreated(instance);
        Note("created");
        instance->SetInstanceData(dataOfNew);
        ++living;
    }
    void InstanceDestroyed(Instance instance) override
    {
        delete static_cast<NarrowString *>(instance->InstanceData());
        --living;
        Note("destroyed");
    }
    void SerializeInstance(Instance instance, void *document, void *element) override
    {
        auto *text = static_cast<NarrowString *>(instance->InstanceData());
        if (text != nullptr && !text->empty())
            instance->SerializeInstanceDataBytes(reinterpret_cast<unsigned char *>(text->data()),
                                                 static_cast<int>(text->size()), document, element);
        if (whenSaved)
            whenSaved(instance, document, element);
        Note("saved");
    }
    void DeserializeInstance(Instance instance, unsigned char *bytes, int size) override
    {
        Text(*instance).assign(reinterpret_cast<const char *>(bytes), static_cast<std::size_t>(size));
        Note("read");
    }
    void PropertyChanged(Instance, const char *property) override
    {
        Note(NarrowString("changed ") + property);
    }

    void FilterMargins(EffectInstance *, FilterSurface *surface, int width, int height, float scale,
                       float aFloat, bool aBool, int time, int *left, int *right, int *top,
                       int *bottom) override
    {
        filtered.push_back({double(width), double(height), double(surface->width), double(surface->height),
                            double(surface->textureWidth), double(surface->textureHeight), scale, aFloat,
                            double(aBool), double(time)});
        *left += 10;
        *right += 20;
        *top += 3;
        *bottom += 4;
    }

private:
    void Note(const NarrowString &call)
    {
        calls.push_back(call);
        if (call == failing)
            throw std::domain_error("The plug-in failed");
    }
};

class TestPluginManager : public WithoutHostOperations<AbstractPluginManager>
{
public:
    std::vector<std::shared_ptr<TestPlugin>> plugins;

    std::shared_ptr<AbstractPlugin> FindPlugin(const KyID &id) override
    {
        for (const auto &plugin : plugins)
            if (plugin->id == id)
                return plugin;
        return nullptr;
    }

    void AttachProject(const std::shared_ptr<Project> &) override {}
};

} // namespace marlet::test
