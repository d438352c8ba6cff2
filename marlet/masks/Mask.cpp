#include <marlet/masks/Mask.h>

#include <marlet/animation/PropertyTable.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/masks/MotionPath.h>

namespace marlet::project
{

struct Mask_Impl {
    kytl::KyID id;
    WideString name;
    std::shared_ptr<PropertyManager> animation = PropertyManager::Create();
    bool visible = true;
    MotionPath path;
    kytl::KyID parentLayerID;
    KeptXml kept;
};

namespace
{

constexpr char kTag[] = "Mask";
constexpr unsigned int kVersion = 0;

const PropertyTable &Properties()
{
    static const PropertyTable properties = {{"opacity", 100.f},
                                             {"expansion", 0.f},
                                             {"feather", 0.f},
                                             {"roundness", 0.f},
                                             FixedProperty("featherMode", 2),
                                             FixedProperty("inverted", false),
                                             FixedProperty("blendMode", 2),
                                             {"motionPath", true}};
    return properties;
}

template <class Xml, class Data> void MaskFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Name", data.name);
    xml.Child("Visible", data.visible);
    xml.Child("LayerID", data.parentLayerID);
}

} // namespace

Mask::Mask() = default;

Mask::Mask(const WideString &name) : Mask()
{
    impl_->id = kytl::KyID::Generate();
    impl_->name = name;
    impl_->path.SetParentID(impl_->id);
    CreateProperties(*impl_->animation, Properties());
}

Mask::Mask(const XmlCursor &element, const Deserializer &) : Mask()
{
    Deserialize(element);
}

Mask::Mask(const Mask &other) = default;

Mask::~Mask() = default;

std::shared_ptr<Mask> Mask::Create(const WideString &name)
{
    return std::shared_ptr<Mask>(new Mask(name));
}

std::shared_ptr<Mask> Mask::CreateFromXml(const WideString &xml)
{
    const XmlDocument document(xml);
    return std::shared_ptr<Mask>(new Mask(document.Root(), Deserializer()));
}

std::shared_ptr<Mask> Mask::Copy(const std::shared_ptr<Mask> &mask)
{
    Require(mask, "mask");
    std::shared_ptr<Mask> copy(new Mask(*mask));
    copy->impl_->id = kytl::KyID::Generate();
    copy->impl_->animation = PropertyManager::Copy(mask->Animation());
    copy->impl_->path.SetParentID(copy->impl_->id);
    return copy;
}

WideString Mask::Serialize() const
{
    return XmlText([this](XmlWriter &writer) { Serialize(writer); });
}

void Mask::Deserialize(const WideString &xml)
{
    const XmlDocument document(xml);
    Deserialize(document.Root());
}

void Mask::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, kTag, kVersion, impl_->kept);
    MaskFields(writer, *impl_);
    impl_->path.Serialize(writer);
    impl_->animation->Serialize(writer);
}

void Mask::Deserialize(const XmlCursor &element)
{
    const unsigned int version = element.RequireHeader(kTag, kVersion);
    MaskFields(element, *impl_);
    if (const XmlCursor path = element.Find("MotionPath"); !path.IsNull())
        impl_->path.Deserialize(path);
    impl_->animation = PropertyManager::Create();
    if (const XmlCursor properties = element.Find("PropertyManager"); !properties.IsNull())
        impl_->animation->Deserialize(properties);
    RequireProperties(element, *impl_->animation, Properties(), version);
    impl_->kept = KeptXml(element);
}

const kytl::KyID &Mask::ID() const
{
    return impl_->id;
}

const kytl::KyID &Mask::ParentLayerID() const
{
    return impl_->parentLayerID;
}

void Mask::SetParentLayerID(const kytl::KyID &id)
{
    impl_->parentLayerID = id;
}

void Mask::ClearParentLayerID()
{
    impl_->parentLayerID = {};
}

const WideString &Mask::Name() const
{
    return impl_->name;
}

void Mask::SetName(const WideString &name)
{
    impl_->name = name;
}

bool Mask::IsVisible() const
{
    return impl_->visible;
}

void Mask::SetVisible(bool visible)
{
    impl_->visible = visible;
}

MotionPath &Mask::Path()
{
    return impl_->path;
}

const MotionPath &Mask::Path() const
{
    return impl_->path;
}

PropertyManager &Mask::Animation()
{
    return *impl_->animation;
}

const PropertyManager &Mask::Animation() const
{
    return *impl_->animation;
}

MaskBlend Mask::BlendMode() const
{
    return MaskBlend{boost::get<int>(Animation().StaticValue("blendMode"))};
}

void Mask::SetBlendMode(MaskBlend mode)
{
    Animation().StaticValue("blendMode") = static_cast<int>(mode);
}

MaskFeather Mask::FeatherMode() const
{
    return MaskFeather{boost::get<int>(Animation().StaticValue("featherMode"))};
}

void Mask::SetFeatherMode(MaskFeather mode)
{
    Animation().StaticValue("featherMode") = static_cast<int>(mode);
}

bool Mask::IsInverted() const
{
    return boost::get<bool>(Animation().StaticValue("inverted"));
}

void Mask::SetInverted(bool inverted)
{
    Animation().StaticValue("inverted") = inverted;
}

} // namespace marlet::project
