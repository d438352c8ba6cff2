#include <marlet/editor/Transition.h>

#include <marlet/foundation/Arguments.h>
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

    std::unique_ptr<PluginInstance_Impl> Clone() const override
    {
        return std::make_unique<Transition_Impl>(*this);
    }
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

Transition::Transition(const std::shared_ptr<AbstractPlugin> &plugin)
    : PluginInstance(std::make_unique<Transition_Impl>(plugin))
{
    AnnounceBeginning();
}

Transition::Transition(const Transition &other) : PluginInstance(other)
{
    AnnounceBeginning();
}

Transition::~Transition()
{
    AnnounceEnd();
}

Transition_Impl &Transition::Data()
{
    return static_cast<Transition_Impl &>(*impl_);
}

const Transition_Impl &Transition::Data() const
{
    return static_cast<const Transition_Impl &>(*impl_);
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
    Require(source, "transition");
    // Held throughout, so that it lives to hear of the copy's end if something fails.
    const std::shared_ptr<AbstractPlugin> plugin = source->Plugin();
    if (!plugin)
        return nullptr;
    std::shared_ptr<Transition> copy(new Transition(*source));
    Transition_Impl &data = copy->Data();
    data.id = kytl::KyID::Generate();
    data.fromObject = {};
    data.toObject = {};
    data.instanceData = nullptr;
    data.hostInstanceData = nullptr;
    copy->TakePrivateDataOf(*source);
    return copy;
}

AbstractPluginInstance::InstanceType Transition::Type() const
{
    return InstanceType::Transition;
}

const kytl::KyID &Transition::FromObject() const
{
    return Data().fromObject;
}

void Transition::SetFromObject(const kytl::KyID &id)
{
    Data().fromObject = id;
}

void Transition::ClearFromObject()
{
    Data().fromObject = {};
}

const kytl::KyID &Transition::ToObject() const
{
    return Data().toObject;
}

void Transition::SetToObject(const kytl::KyID &id)
{
    Data().toObject = id;
}

void Transition::ClearToObject()
{
    Data().toObject = {};
}

int Transition::Length() const
{
    return Data().length;
}

void Transition::SetLength(int frames)
{
    Data().length = frames;
}

int Transition::RelativeStartFrame() const
{
    return Data().relativeStart;
}

void Transition::SetRelativeStartFrame(int frame)
{
    Data().relativeStart = frame;
}

} // namespace marlet::project
