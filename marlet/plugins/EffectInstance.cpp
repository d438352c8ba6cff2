#include <marlet/plugins/EffectInstance.h>

#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPluginUITreeNode.h>
#include <marlet/plugins/PluginInstance_Impl.h>
#include <marlet/plugins/PluginUITreeWalk.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

/// The static values of the layer pickers' properties. A picker whose property is not there, or holds no ID
/// (both of which a plug-in or a file can bring about), refers to no layer: it must not keep a layer from
/// being deleted.
template <class ID, class Properties>
std::vector<ID *> LayerReferences(const EffectInstance &effect, Properties &properties)
{
    std::vector<ID *> references;
    for (const NarrowString &name : effect.LayerPickerProperties())
        if (properties.HasProperty(name.c_str()))
            if (ID *id = boost::get<kytl::KyID>(&properties.StaticValue(name.c_str())))
                references.push_back(id);
    return references;
}

template <class Xml, class Data> void IdentityFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Name", data.name);
    xml.Child("PluginID", data.pluginID);
}

template <class Xml, class Data> void PlaceFields(Xml &xml, Data &data)
{
    xml.Child("ParentID", data.parentID);
    xml.Child("ParentTimelineID", data.parentTimelineID);
    xml.Child("Enabled", data.enabled);
}

} // namespace

struct EffectInstance_Impl : PluginInstance_Impl {
    explicit EffectInstance_Impl(const std::shared_ptr<AbstractPlugin> &ofPlugin)
        : PluginInstance_Impl(ofPlugin), name(ofPlugin->Name())
    {
    }

    std::unique_ptr<PluginInstance_Impl> Clone() const override
    {
        return std::make_unique<EffectInstance_Impl>(*this);
    }
    const char *Tag() const override { return "Instance"; }
    NarrowString Description() const override { return "the effect \"" + ToUtf8(name) + '"'; }
    void WriteHead(XmlWriter &writer, const AbstractPlugin &ofPlugin) const override
    {
        IdentityFields(writer, *this);
        WritePluginNameAndVersion(writer, ofPlugin);
        PlaceFields(writer, *this);
    }
    void ReadHead(const XmlCursor &element) override
    {
        IdentityFields(element, *this);
        PlaceFields(element, *this);
    }

    WideString name;
    kytl::KyID parentID;
    kytl::KyID parentTimelineID;
    bool enabled = true;
};

EffectInstance::EffectInstance(const std::shared_ptr<AbstractPlugin> &plugin)
    : PluginInstance(std::make_unique<EffectInstance_Impl>(plugin))
{
    AnnounceBeginning();
}

EffectInstance::EffectInstance(const EffectInstance &other) : PluginInstance(other)
{
    AnnounceBeginning();
}

EffectInstance::~EffectInstance()
{
    AnnounceEnd();
}

EffectInstance_Impl &EffectInstance::Data()
{
    return static_cast<EffectInstance_Impl &>(*impl_);
}

const EffectInstance_Impl &EffectInstance::Data() const
{
    return static_cast<const EffectInstance_Impl &>(*impl_);
}

std::shared_ptr<EffectInstance> EffectInstance::Create(const std::shared_ptr<AbstractPlugin> &plugin)
{
    return std::shared_ptr<EffectInstance>(new EffectInstance(plugin));
}

std::shared_ptr<EffectInstance>
EffectInstance::CreateFromXml(const std::shared_ptr<AbstractPlugin> &plugin, const WideString &xml,
                              const std::unordered_map<NarrowString, bool> &validLayerIDs)
{
    const XmlDocument document(xml);
    const std::shared_ptr<EffectInstance> instance = Create(plugin);
    instance->Deserialize(document.Root());
    if (!validLayerIDs.empty())
        instance->ClearInvalidLayerReferences(validLayerIDs);
    return instance;
}

std::shared_ptr<EffectInstance> EffectInstance::Copy(const std::shared_ptr<EffectInstance> &source)
{
    Require(source, "effect");
    // Held throughout, so that it lives to hear of the copy's end if something fails.
    const std::shared_ptr<AbstractPlugin> plugin = source->Plugin();
    if (!plugin)
        return nullptr;
    std::shared_ptr<EffectInstance> copy(new EffectInstance(*source));
    EffectInstance_Impl &data = copy->Data();
    data.id = kytl::KyID::Generate();
    data.properties = PropertyManager::Copy(source->Properties());
    data.hostInstanceData = nullptr;
    copy->ClearParent();
    copy->TakePrivateDataOf(*source);
    return copy;
}

AbstractPluginInstance::InstanceType EffectInstance::Type() const
{
    return InstanceType::Effect;
}

const WideString &EffectInstance::Name() const
{
    return Data().name;
}

void EffectInstance::SetName(const WideString &name)
{
    Data().name = name;
}

bool EffectInstance::Enabled() const
{
    return Data().enabled;
}

void EffectInstance::SetEnabled(bool enabled)
{
    Data().enabled = enabled;
}

const kytl::KyID &EffectInstance::ParentID() const
{
    return Data().parentID;
}

const kytl::KyID &EffectInstance::ParentTimelineID() const
{
    return Data().parentTimelineID;
}

void EffectInstance::SetParent(const kytl::KyID &parent, const kytl::KyID &timeline)
{
    Data().parentID = parent;
    Data().parentTimelineID = timeline;
}

void EffectInstance::ClearParent()
{
    SetParent({}, {});
}

std::vector<NarrowString> EffectInstance::LayerPickerProperties() const
{
    std::vector<NarrowString> names;
    if (const std::shared_ptr<AbstractPlugin> plugin = Plugin())
        ForEachPluginUINode(*plugin, [&names](const AbstractPluginUITreeNode &node) {
            if (node.Type() == AbstractPluginUITreeNode::NodeType::LayerPicker)
                names.emplace_back(EditedProperty(node));
        });
    return names;
}

bool EffectInstance::IsLayerReferenced(const kytl::KyID &layerID) const
{
    const auto references = LayerReferences<const kytl::KyID>(*this, Properties());
    return std::ranges::any_of(references, [&](const kytl::KyID *id) { return *id == layerID; });
}

void EffectInstance::ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs)
{
    // Which IDs are those of layers, only the plug-in knows.
    if (IsStandIn())
        return;
    for (kytl::KyID *id : LayerReferences<kytl::KyID>(*this, Properties()))
        if (!validIDs.contains(id->ToNarrowString()))
            *id = {};
}

void EffectInstance::ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes)
{
    for (kytl::KyID *id : LayerReferences<kytl::KyID>(*this, Properties()))
        if (const auto found = changes.find(id->ToNarrowString()); found != changes.end())
            *id = kytl::KyID::FromString(found->second);
}

} // namespace marlet::project
