#include <marlet/project/SolidAsset.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/project/InstancesXml.h>

namespace marlet::project
{

struct SolidAsset_Impl {
    kytl::KyID id;
    WideString name;
    Uncopied<AbstractAsset::InstanceList> instances;
    kytl::KyID parentFolderID;
    KeptXml kept;
    kytl::KyColorRGBA_32f color;
    int width = 0;
    int height = 0;
    PAR pixelAspectRatio = PAR::Square;
};

namespace
{

template <class Xml, class Self> void SolidAssetFields(Xml &xml, Self &self)
{
    xml.Child("ID", self.id);
    xml.Child("Name", self.name);
    xml.Child("ParentFolderID", self.parentFolderID);
    xml.Child("Color", self.color);
    xml.Child("Width", self.width);
    xml.Child("Height", self.height);
    xml.Child("PAR", self.pixelAspectRatio);
}

} // namespace

SolidAsset::SolidAsset() = default;

SolidAsset::SolidAsset(const XmlCursor &element) : SolidAsset()
{
    Deserialize(element);
}

SolidAsset::SolidAsset(const SolidAsset &other) = default;

SolidAsset::~SolidAsset() = default;

std::shared_ptr<SolidAsset> SolidAsset::Create(const WideString &name, const kytl::KyColorRGBA_32f &color,
                                               int width, int height, PAR pixelAspectRatio)
{
    std::shared_ptr<SolidAsset> solid(new SolidAsset());
    solid->impl_->id = kytl::KyID::Generate();
    solid->impl_->name = name;
    solid->impl_->color = color;
    solid->impl_->width = width;
    solid->impl_->height = height;
    solid->impl_->pixelAspectRatio = pixelAspectRatio;
    return solid;
}

std::shared_ptr<SolidAsset> SolidAsset::CreateFromXml(const WideString &xml)
{
    const XmlDocument document(xml);
    return std::shared_ptr<SolidAsset>(new SolidAsset(document.Root()));
}

std::shared_ptr<SolidAsset> SolidAsset::Copy(std::shared_ptr<SolidAsset> other)
{
    Require(other, "asset");
    return std::static_pointer_cast<SolidAsset>(other->Clone());
}

std::shared_ptr<AbstractAsset> SolidAsset::Clone() const
{
    std::shared_ptr<SolidAsset> clone(new SolidAsset(*this));
    clone->impl_->id = kytl::KyID::Generate();
    return clone;
}

void SolidAsset::Serialize(XmlWriter &writer, const ProjectTextureImageCache &) const
{
    const XmlElement element(writer, "SolidAsset", 0, impl_->kept);
    SolidAssetFields(writer, *impl_);
    WriteInstances(writer, *impl_->instances);
}

WideString SolidAsset::Serialize(const ProjectTextureImageCache &textures) const
{
    return XmlText([&](XmlWriter &writer) { Serialize(writer, textures); });
}

void SolidAsset::Deserialize(const XmlCursor &element)
{
    element.RequireHeader("SolidAsset", 0);
    SolidAssetFields(element, *impl_);
    PassInstances(element);
    impl_->kept = KeptXml(element);
}

void SolidAsset::Deserialize(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &,
                             const Abstract3DEffectFactory &, ProjectTextureImageCache &)
{
    const XmlDocument document(xml);
    Deserialize(document.Root());
}

const kytl::KyID &SolidAsset::ID() const
{
    return impl_->id;
}

AssetType SolidAsset::Type() const
{
    return AssetType::Solid;
}

const WideString &SolidAsset::Name() const
{
    return impl_->name;
}

void SolidAsset::SetName(const WideString &name)
{
    impl_->name = name;
}

bool SolidAsset::HasAudio() const
{
    return false;
}

bool SolidAsset::HasVideo() const
{
    return true;
}

bool SolidAsset::IsOffline() const
{
    return false;
}

int SolidAsset::Width() const
{
    return impl_->width;
}

int SolidAsset::Height() const
{
    return impl_->height;
}

AbstractAsset::InstanceList &SolidAsset::Instances()
{
    return *impl_->instances;
}

const AbstractAsset::InstanceList &SolidAsset::Instances() const
{
    return *impl_->instances;
}

const kytl::KyID &SolidAsset::ParentFolderID() const
{
    return impl_->parentFolderID;
}

void SolidAsset::SetParentFolderID(const kytl::KyID &id)
{
    impl_->parentFolderID = id;
}

void SolidAsset::ClearParentBinFolder()
{
    impl_->parentFolderID = kytl::KyID();
}

const kytl::KyColorRGBA_32f &SolidAsset::Color() const
{
    return impl_->color;
}

void SolidAsset::SetColor(const kytl::KyColorRGBA_32f &color)
{
    impl_->color = color;
}

void SolidAsset::SetWidth(int width)
{
    impl_->width = width;
}

void SolidAsset::SetHeight(int height)
{
    impl_->height = height;
}

PAR SolidAsset::PixelAspectRatio() const
{
    return impl_->pixelAspectRatio;
}

void SolidAsset::SetPixelAspectRatio(PAR par)
{
    impl_->pixelAspectRatio = par;
}

} // namespace marlet::project
