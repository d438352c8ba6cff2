#include <marlet/plugins/EffectInstance.h>

#include <marlet/animation/PropertyValue.h>
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

// A plug-in that throws out of InstanceCreated is not told of the instance's end: it comes last, so that the
// destructor does not run. Whatever reads goes on from a finished instance, whose destructor runs.

EffectInstance::EffectInstance(const std::shared_ptr<AbstractPlugin> &plugin)
    : impl_(std::make_unique<EffectInstance_Impl>(plugin))
{
    plugin->InstanceCreated(this);
}

EffectInstance::EffectInstance(const EffectInstance &other)
    : AbstractPluginInstance(other), impl_(other.impl_)
{
    impl_->RequirePlugin()->InstanceCreated(this);
}

EffectInstance::~EffectInstance()
{
    impl_->AnnounceEnd(this);
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
    // Held throughout, so that it lives to hear of the copy's end if something fails.
    const std::shared_ptr<AbstractPlugin> plugin = source->Plugin();
    if (!plugin)
        return nullptr;
    std::shared_ptr<EffectInstance> copy(new EffectInstance(*source));
    EffectInstance_Impl &data = *copy->impl_;
    data.id = kytl::KyID::Generate();
    data.properties = PropertyManager::Copy(source->Properties());
    data.hostInstanceData = nullptr;
    copy->ClearParent();
    source->impl_->CopyPrivateData(source.get(), copy.get());
    return copy;
}

WideString EffectInstance::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void EffectInstance::Serialize(XmlWriter &writer) const
{
    impl_->Write(writer, *this);
}

void EffectInstance::SerializeInstanceDataBytes(unsigned char *bytes, int size, void *document, void *element)
{
    AppendInstanceBytes(bytes, size, document, element);
}

void EffectInstance::Deserialize(const XmlCursor &element)
{
    impl_->Read(element, this);
}

AbstractPluginInstance::InstanceType EffectInstance::Type() const
{
    return InstanceType::Effect;
}

const kytl::KyID &EffectInstance::ID() const
{
    return impl_->id;
}

const kytl::KyID &EffectInstance::PluginID() const
{
    return impl_->pluginID;
}

std::shared_ptr<AbstractPlugin> EffectInstance::Plugin() const
{
    return impl_->plugin.lock();
}

PropertyManager &EffectInstance::Properties()
{
    return *impl_->properties;
}

const PropertyManager &EffectInstance::Properties() const
{
    return *impl_->properties;
}

const AbstractPluginInstance::UIState &EffectInstance::PropertyUIState(const char *name) const
{
    return impl_->RequireUIState(name);
}

void EffectInstance::SetPropertyUIState(const char *name, const UIState &state)
{
    impl_->SetUIState(name, state);
}

void EffectInstance::NotifyPropertyChanged(const char *name)
{
    impl_->RequirePlugin()->PropertyChanged(this, name);
}

void *EffectInstance::InstanceData() const
{
    return impl_->instanceData;
}

void EffectInstance::SetInstanceData(void *data)
{
    impl_->instanceData = data;
}

void *EffectInstance::HostInstanceData() const
{
    return impl_->hostInstanceData;
}

void EffectInstance::SetHostInstanceData(void *data)
{
    impl_->hostInstanceData = data;
}

const WideString &EffectInstance::Name() const
{
    return impl_->name;
}

void EffectInstance::SetName(const WideString &name)
{
    impl_->name = name;
}

bool EffectInstance::Enabled() const
{
    return impl_->enabled;
}

void EffectInstance::SetEnabled(bool enabled)
{
    impl_->enabled = enabled;
}

PropertyManager &EffectInstance::Animation()
{
    return Properties();
}

const PropertyManager &EffectInstance::Animation() const
{
    return Properties();
}

const kytl::KyID &EffectInstance::ParentID() const
{
    return impl_->parentID;
}

const kytl::KyID &EffectInstance::ParentTimelineID() const
{
    return impl_->parentTimelineID;
}

void EffectInstance::SetParent(const kytl::KyID &parent, const kytl::KyID &timeline)
{
    impl_->parentID = parent;
    impl_->parentTimelineID = timeline;
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
