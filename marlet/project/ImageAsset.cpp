#include <marlet/project/ImageAsset.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/platform/images/ImageFile.h>
#include <marlet/project/InstancesXml.h>
#include <marlet/project/MediaPaths.h>

namespace marlet::project
{

using kytl::thread::KyCriticalSection;
using kytl::thread::KyScopedLock;

struct ImageAsset_Impl {
    kytl::KyID id;
    WideString name;
    Uncopied<AbstractAsset::InstanceList> instances;
    kytl::KyID parentFolderID;
    KeptXml kept;
    PAR pixelAspectRatio = PAR::Square;
    bool isDirty = false;

    /// A rendering thread may ask for the header while the host changes the file name: what knows of the
    /// file, and every change of its name, holds the lock. The host's thread alone changes the name, so that
    /// it reads it without.
    mutable Uncopied<KyCriticalSection> lock;
    MediaPath path;
    mutable std::optional<platform::ImageHeader> header;

    /// What is known of the file, which is looked at if nothing is.
    std::optional<platform::ImageHeader> Header() const
    {
        const KyScopedLock hold(*lock);
        if (!header)
            header = platform::ReadImageHeader(path.filename);
        return header;
    }
};

namespace
{

constexpr unsigned int kDone = 0;
constexpr unsigned int kFailed = 1;

template <class Xml, class Self> void ImageAssetFields(Xml &xml, Self &self)
{
    xml.Child("ID", self.id);
    xml.Child("Name", self.name);
    xml.Child("ParentFolderID", self.parentFolderID);
    FilenameChild(xml, self.path);
    xml.Child("PAR", self.pixelAspectRatio);
}

} // namespace

ImageAsset::ImageAsset() = default;

ImageAsset::ImageAsset(const WideString &filename) : ImageAsset()
{
    impl_->id = kytl::KyID::Generate();
    impl_->path.filename = filename;
    impl_->name = platform::FileName(filename);
}

ImageAsset::ImageAsset(const XmlCursor &element, const Deserializer &) : ImageAsset()
{
    Deserialize(element);
}

ImageAsset::ImageAsset(const ImageAsset &other) = default;

ImageAsset::~ImageAsset() = default;

std::shared_ptr<ImageAsset> ImageAsset::Create(const WideString &filename)
{
    return std::shared_ptr<ImageAsset>(new ImageAsset(filename));
}

std::shared_ptr<ImageAsset> ImageAsset::CreateFromXml(const WideString &xml)
{
    const XmlDocument document(xml);
    return std::shared_ptr<ImageAsset>(new ImageAsset(document.Root(), Deserializer()));
}

std::shared_ptr<ImageAsset> ImageAsset::Copy(std::shared_ptr<ImageAsset> other)
{
    Require(other, "asset");
    return std::static_pointer_cast<ImageAsset>(other->Clone());
}

int ImageAsset::OfflineWidth()
{
    return 300;
}

int ImageAsset::OfflineHeight()
{
    return 300;
}

std::shared_ptr<AbstractAsset> ImageAsset::Clone() const
{
    const KyScopedLock hold(*impl_->lock);
    std::shared_ptr<ImageAsset> clone(new ImageAsset(*this));
    clone->impl_->id = kytl::KyID::Generate();
    return clone;
}

void ImageAsset::Serialize(XmlWriter &writer, const ProjectTextureImageCache &) const
{
    const XmlElement element(writer, "ImageAsset", 0, impl_->kept);
    ImageAssetFields(writer, *impl_);
    WriteInstances(writer, *impl_->instances);
}

WideString ImageAsset::Serialize(const ProjectTextureImageCache &textures) const
{
    return XmlText([&](XmlWriter &writer) { Serialize(writer, textures); });
}

void ImageAsset::Deserialize(const XmlCursor &element)
{
    const KyScopedLock hold(*impl_->lock);
    element.RequireHeader("ImageAsset", 0);
    impl_->header.reset();
    ImageAssetFields(element, *impl_);
    PassInstances(element);
    impl_->kept = KeptXml(element);
}

void ImageAsset::Deserialize(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &,
                             const Abstract3DEffectFactory &, ProjectTextureImageCache &)
{
    const XmlDocument document(xml);
    Deserialize(document.Root());
}

WideString ImageAsset::Filename() const
{
    return impl_->path.filename;
}

void ImageAsset::SetFilename(const WideString &filename)
{
    const KyScopedLock hold(*impl_->lock);
    impl_->path = {filename};
    impl_->header.reset();
    impl_->pixelAspectRatio = PAR::Square;
}

bool ImageAsset::IsOffline() const
{
    WideString filename;
    {
        const KyScopedLock hold(*impl_->lock);
        filename = impl_->path.filename;
    }
    return !platform::FileExists(filename);
}

ImageAsset::FileStatus ImageAsset::Status() const
{
    const KyScopedLock hold(*impl_->lock);
    if (!platform::FileExists(impl_->path.filename))
        return FileStatus::Missing;
    return impl_->Header() ? FileStatus::Usable : FileStatus::Unreadable;
}

int ImageAsset::Width() const
{
    const auto header = impl_->Header();
    return header ? header->width : 0;
}

int ImageAsset::Height() const
{
    const auto header = impl_->Header();
    return header ? header->height : 0;
}

int ImageAsset::PixelBitCount() const
{
    const auto header = impl_->Header();
    if (!header)
        return 0;
    return header->hasAlpha ? 32 : 24;
}

KyChannelOrder ImageAsset::PixelChannelOrder() const
{
    const auto header = impl_->Header();
    if (!header)
        return KyChannelOrder::None;
    return header->hasAlpha ? KyChannelOrder::BGRA : KyChannelOrder::RGB;
}

void ImageAsset::Sleep()
{
    const KyScopedLock hold(*impl_->lock);
    impl_->header.reset();
}

void ImageAsset::Wake()
{
    impl_->Header();
}

unsigned int ImageAsset::ReadPixelData(int maxWidth, int maxHeight,
                                       boost::shared_array<unsigned char> &pixels, int *width, int *height)
{
    Require(width, "width");
    Require(height, "height");
    const KyScopedLock hold(*impl_->lock);
    if (Status() != FileStatus::Usable)
        return kFailed;
    const auto picture =
        platform::ReadImagePixels(impl_->path.filename, maxWidth, maxHeight, impl_->header->hasAlpha);
    if (!picture)
        return kFailed;
    pixels = picture->bytes;
    *width = picture->width;
    *height = picture->height;
    return kDone;
}

const kytl::KyID &ImageAsset::ID() const
{
    return impl_->id;
}

AssetType ImageAsset::Type() const
{
    return AssetType::Image;
}

const WideString &ImageAsset::Name() const
{
    return impl_->name;
}

void ImageAsset::SetName(const WideString &name)
{
    impl_->name = name;
}

bool ImageAsset::HasAudio() const
{
    return false;
}

bool ImageAsset::HasVideo() const
{
    return true;
}

AbstractAsset::InstanceList &ImageAsset::Instances()
{
    return *impl_->instances;
}

const AbstractAsset::InstanceList &ImageAsset::Instances() const
{
    return *impl_->instances;
}

const kytl::KyID &ImageAsset::ParentFolderID() const
{
    return impl_->parentFolderID;
}

void ImageAsset::SetParentFolderID(const kytl::KyID &id)
{
    impl_->parentFolderID = id;
}

void ImageAsset::ClearParentBinFolder()
{
    impl_->parentFolderID = kytl::KyID();
}

PAR ImageAsset::PixelAspectRatio() const
{
    return impl_->pixelAspectRatio;
}

void ImageAsset::SetPixelAspectRatio(PAR par)
{
    impl_->pixelAspectRatio = par;
}

bool ImageAsset::IsDirty() const
{
    return impl_->isDirty;
}

void ImageAsset::SetDirty(bool dirty)
{
    impl_->isDirty = dirty;
}

} // namespace marlet::project
