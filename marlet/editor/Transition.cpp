#include <marlet/editor/Transition.h>

#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/plugins/PluginInstance_Impl.h>

namespace marlet::project
{

namespace
{

template <class Xml, class Data> void IdentityFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("PluginID", data.pluginID);
}

template <class Xml, class Data> void PlaceFields(Xml &xml, Data &data)
{
    xml.Child("FromObjectID", data.fromObject);
    xml.Child("ToObjectID", data.toObject);
    xml.Child("Length", data.length);
    xml.Child("RelativeStart", data.relativeStart);
}

} // namespace

struct Transition_Impl : PluginInstance_Impl {
    using PluginInstance_Impl::PluginInstance_Impl;

    const char *Tag() const override { return "Transition"; }
    NarrowString Description() const override { return "the transition " + id.ToNarrowString(); }
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

    kytl::KyID fromObject;
    kytl::KyID toObject;
    int length = 0;
    int relativeStart = 0;
};

// The plug-in is told of the new instance last, and the reading goes on from a finished one: so it hears of
// the end of those alone of which it took the beginning.

Transition::Transition(const std::shared_ptr<AbstractPlugin> &plugin)
    : impl_(std::make_unique<Transition_Impl>(plugin))
{
    plugin->InstanceCreated(this);
}

Transition::Transition(const Transition &other) : AbstractPluginInstance(other), impl_(other.impl_)
{
    impl_->RequirePlugin()->InstanceCreated(this);
}

Transition::~Transition()
{
    impl_->AnnounceEnd(this);
}

std::shared_ptr<Transition> Transition::Create(const std::shared_ptr<AbstractPlugin> &plugin)
{
    return std::shared_ptr<Transition>(new Transition(plugin));
}

std::shared_ptr<Transition> Transition::CreateFromXml(const std::shared_ptr<AbstractPlugin> &plugin,
                                                      const WideString &xml)
{
    const XmlDocument document(xml);
    const std::shared_ptr<Transition> transition = Create(plugin);
    transition->Deserialize(document.Root());
    return transition;
}

std::shared_ptr<Transition> Transition::Copy(const std::shared_ptr<Transition> &source)
{
    // Held throughout, so that it lives to hear of the copy's end if something fails.
    const std::shared_ptr<AbstractPlugin> plugin = source->Plugin();
    if (!plugin)
        return nullptr;
    std::shared_ptr<Transition> copy(new Transition(*source));
    Transition_Impl &data = *copy->impl_;
    data.id = kytl::KyID::Generate();
    data.fromObject = {};
    data.toObject = {};
    data.instanceData = nullptr;
    data.hostInstanceData = nullptr;
    source->impl_->CopyPrivateData(source.get(), copy.get());
    return copy;
}

WideString Transition::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void Transition::Serialize(XmlWriter &writer) const
{
    impl_->Write(writer, *this);
}

void Transition::SerializeInstanceDataBytes(unsigned char *bytes, int size, void *document, void *element)
{
    AppendInstanceBytes(bytes, size, document, element);
}

void Transition::Deserialize(const XmlCursor &element)
{
    impl_->Read(element, this);
}

AbstractPluginInstance::InstanceType Transition::Type() const
{
    return InstanceType::Transition;
}

const kytl::KyID &Transition::ID() const
{
    return impl_->id;
}

const kytl::KyID &Transition::PluginID() const
{
    return impl_->pluginID;
}

std::shared_ptr<AbstractPlugin> Transition::Plugin() const
{
    return impl_->plugin.lock();
}

PropertyManager &Transition::Properties()
{
    return *impl_->properties;
}

const PropertyManager &Transition::Properties() const
{
    return *impl_->properties;
}

const AbstractPluginInstance::UIState &Transition::PropertyUIState(const char *name) const
{
    return impl_->RequireUIState(name);
}

void Transition::SetPropertyUIState(const char *name, const UIState &state)
{
    impl_->SetUIState(name, state);
}

void Transition::NotifyPropertyChanged(const char *name)
{
    impl_->RequirePlugin()->PropertyChanged(this, name);
}

void *Transition::InstanceData() const
{
    return impl_->instanceData;
}

void Transition::SetInstanceData(void *data)
{
    impl_->instanceData = data;
}

void *Transition::HostInstanceData() const
{
    return impl_->hostInstanceData;
}

void Transition::SetHostInstanceData(void *data)
{
    impl_->hostInstanceData = data;
}

PropertyManager &Transition::Animation()
{
    return Properties();
}

const PropertyManager &Transition::Animation() const
{
    return Properties();
}

const kytl::KyID &Transition::FromObject() const
{
    return impl_->fromObject;
}

void Transition::SetFromObject(const kytl::KyID &id)
{
    impl_->fromObject = id;
}

void Transition::ClearFromObject()
{
    impl_->fromObject = {};
}

const kytl::KyID &Transition::ToObject() const
{
    return impl_->toObject;
}

void Transition::SetToObject(const kytl::KyID &id)
{
    impl_->toObject = id;
}

void Transition::ClearToObject()
{
    impl_->toObject = {};
}

int Transition::Length() const
{
    return impl_->length;
}

void Transition::SetLength(int frames)
{
    impl_->length = frames;
}

int Transition::RelativeStartFrame() const
{
    return impl_->relativeStart;
}

void Transition::SetRelativeStartFrame(int frame)
{
    impl_->relativeStart = frame;
}

} // namespace marlet::project
