#include <marlet/project/MediaAsset.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/platform/images/ImageFile.h>
#include <marlet/platform/media/KyAbstractAudioStream.h>
#include <marlet/platform/media/KyAbstractVideoStream.h>
#include <marlet/project/InstancesXml.h>
#include <marlet/project/MediaAssetImpl.h>

#include <algorithm>
#include <utility>

namespace marlet::project
{

using kyh::media::KyAbstractAudioStream;
using kyh::media::KyAbstractMediaFile;
using kyh::media::KyAbstractVideoStream;
using kytl::thread::KyCriticalSection;
using kytl::thread::KyScopedLock;

MediaAsset::Status MediaAsset_Impl::StatusOf(int code)
{
    switch (code) {
    case kyh::media::kSuccess:
        return MediaAsset::Status::Usable;
    case kyh::media::kNotFound:
    case kyh::media::kNoPermission:
    case kyh::media::kNotAFile:
        return MediaAsset::Status::Missing;
    case kyh::media::kUnknownFormat:
    case kyh::media::kDamaged:
        return MediaAsset::Status::Unreadable;
    default:
        return MediaAsset::Status::Failed;
    }
}

namespace
{

template <class Xml, class Self> void MediaAssetFields(Xml &xml, Self &self)
{
    xml.Child("ID", self.id);
    xml.Child("Name", self.name);
    xml.Child("ParentFolderID", self.parentFolderID);
    FilenameChild(xml, self.path);
    xml.Child("IsImageSequence", self.isImageSequence);
    xml.Child("OverrideFrameRate", self.override.overrideFrameRate);
    xml.Child("FrameRate", self.override.frameRate);
    xml.Child("OverridePAR", self.override.overridePAR);
    xml.Child("PAR", self.override.par);
    xml.Child("OverrideFields", self.override.overrideFields);
    xml.Child("Fields", self.override.fields);
    xml.Child("InPoint", self.trimmerInPoint);
    xml.Child("OutPoint", self.trimmerOutPoint);
}

/// Moves a point beyond the end to the last frame.
int CorrectedPoint(int &point, const MediaAsset &asset)
{
    if (point == MediaAsset_Impl::kNotSet)
        return point;
    if (const auto video = asset.VideoStream())
        point = std::min(point, video->FrameCount() - 1);
    else if (const auto audio = asset.AudioStream())
        point = std::min(point, audio->FrameCount() - 1);
    return point;
}

} // namespace

MediaAsset::MediaAsset() = default;

MediaAsset::MediaAsset(const WideString &path, KyAbstractMediaFile *file, int code, bool isImageSequence)
    : MediaAsset()
{
    impl_->id = kytl::KyID::Generate();
    impl_->name = platform::FileName(path);
    impl_->path.filename = path;
    impl_->isImageSequence = isImageSequence;
    impl_->mediaFile = file;
    impl_->SetStatus(code);
}

MediaAsset::MediaAsset(const XmlCursor &element, const Deserializer &) : MediaAsset()
{
    Deserialize(element);
}

MediaAsset::MediaAsset(const WideString &xml, const Deserializer &) : MediaAsset()
{
    const XmlDocument document(xml);
    Deserialize(document.Root());
}

MediaAsset::MediaAsset(const MediaAsset &other) = default;

MediaAsset::~MediaAsset() = default;

std::shared_ptr<MediaAsset> MediaAsset::Copy(std::shared_ptr<MediaAsset> other)
{
    Require(other, "asset");
    return other;
}

std::shared_ptr<AbstractAsset> MediaAsset::Clone() const
{
    const KyScopedLock hold(ShortLock());
    std::shared_ptr<MediaAsset> clone(new MediaAsset(*this));
    clone->impl_->id = kytl::KyID::Generate();
    return clone;
}

void MediaAsset::Serialize(XmlWriter &writer, const ProjectTextureImageCache &) const
{
    const XmlElement element(writer, "MediaAsset", 0, impl_->kept);
    MediaAssetFields(writer, *impl_);
    WriteInstances(writer, *impl_->instances);
}

WideString MediaAsset::Serialize(const ProjectTextureImageCache &textures) const
{
    return XmlText([&](XmlWriter &writer) { Serialize(writer, textures); });
}

void MediaAsset::Deserialize(const XmlCursor &element)
{
    // A thread that reads frames looks at the overrides, one that opens files at the path.
    const KyScopedLock hold(Mutex());
    const KyScopedLock holdShortly(ShortLock());
    element.RequireHeader("MediaAsset", 0);
    MediaAssetFields(element, *impl_);
    PassInstances(element);
    impl_->kept = KeptXml(element);
}

void MediaAsset::Deserialize(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &,
                             const Abstract3DEffectFactory &, ProjectTextureImageCache &)
{
    const XmlDocument document(xml);
    Deserialize(document.Root());
}

bool MediaAsset::HasAudio() const
{
    const KyScopedLock hold(ShortLock());
    return impl_->StreamOfFile<KyAbstractAudioStream>(kyh::media::kAudioStream) != nullptr;
}

bool MediaAsset::HasVideo() const
{
    const KyScopedLock hold(ShortLock());
    return impl_->StreamOfFile<KyAbstractVideoStream>(kyh::media::kVideoStream) != nullptr;
}

bool MediaAsset::IsOffline() const
{
    return MediaFileStatus() != Status::Usable;
}

int MediaAsset::Width() const
{
    const auto video = VideoStream();
    return video ? video->Width() : 0;
}

int MediaAsset::Height() const
{
    const auto video = VideoStream();
    return video ? video->Height() : 0;
}

KyAbstractMediaFile *MediaAsset::MediaFile() const
{
    const KyScopedLock hold(ShortLock());
    return impl_->mediaFile;
}

MediaAsset::Status MediaAsset::MediaFileStatus() const
{
    const KyScopedLock hold(ShortLock());
    return impl_->FollowFile();
}

std::shared_ptr<MediaAudioStream> MediaAsset::AudioStream() const
{
    const KyScopedLock hold(ShortLock());
    std::shared_ptr<MediaAudioStream> &cached = *impl_->audioStream;
    const auto stream = impl_->StreamOfFile<KyAbstractAudioStream>(kyh::media::kAudioStream);
    if (!stream)
        cached.reset();
    else if (!cached || cached->SourceAudioStream() != stream)
        cached.reset(new MediaAudioStream(stream));
    return cached;
}

std::shared_ptr<MediaVideoStream> MediaAsset::VideoStream() const
{
    const KyScopedLock hold(ShortLock());
    std::shared_ptr<MediaVideoStream> &cached = *impl_->videoStream;
    const auto stream = impl_->StreamOfFile<KyAbstractVideoStream>(kyh::media::kVideoStream);
    if (!stream)
        cached.reset();
    else if (!cached || cached->stream_ != stream)
        cached.reset(new MediaVideoStream(stream, this));
    return cached;
}

void MediaAsset::Sleep()
{
    const KyScopedLock hold(Mutex());
    if (impl_->mediaFile)
        impl_->mediaFile->Sleep();
}

void MediaAsset::Wake()
{
    const KyScopedLock hold(Mutex());
    if (!impl_->mediaFile)
        return;
    const int code = impl_->mediaFile->Wake();
    const KyScopedLock holdShortly(ShortLock());
    impl_->DropStreams();
    if (code != kyh::media::kNothingToReport)
        impl_->SetStatus(code);
}

void MediaAsset::SetMediaFile(KyAbstractMediaFile *file)
{
    const KyScopedLock hold(Mutex());
    const KyScopedLock holdShortly(ShortLock());
    impl_->mediaFile = file;
}

void MediaAsset::SetMediaFileStatus(int code)
{
    const KyScopedLock hold(Mutex());
    const KyScopedLock holdShortly(ShortLock());
    impl_->SetStatus(code);
}

void MediaAsset::Relink(const WideString &path, KyAbstractMediaFile *file, int code)
{
    const KyScopedLock hold(Mutex());
    {
        const KyScopedLock holdShortly(ShortLock());
        impl_->DropStreams();
        impl_->path = {path};
        impl_->mediaFile = file;
        impl_->SetStatus(code);
    }
    if (file && MediaAsset_Impl::StatusOf(code) == Status::Usable)
        file->NotifyRelinked();
}

int MediaAsset::TrimmerInPoint() const
{
    return CorrectedPoint(impl_->trimmerInPoint, *this);
}

int MediaAsset::TrimmerOutPoint() const
{
    return CorrectedPoint(impl_->trimmerOutPoint, *this);
}

int MediaAsset::StoredTrimmerInPoint() const
{
    return impl_->trimmerInPoint;
}

int MediaAsset::StoredTrimmerOutPoint() const
{
    return impl_->trimmerOutPoint;
}

void MediaAsset::SetTrimmerInPoint(int frame)
{
    impl_->trimmerInPoint = frame;
}

void MediaAsset::SetTrimmerOutPoint(int frame)
{
    impl_->trimmerOutPoint = frame;
}

const kytl::KyID &MediaAsset::ID() const
{
    return impl_->id;
}

AssetType MediaAsset::Type() const
{
    return AssetType::Media;
}

const WideString &MediaAsset::Name() const
{
    return impl_->name;
}

void MediaAsset::SetName(const WideString &name)
{
    impl_->name = name;
}

AbstractAsset::InstanceList &MediaAsset::Instances()
{
    return *impl_->instances;
}

const AbstractAsset::InstanceList &MediaAsset::Instances() const
{
    return *impl_->instances;
}

const kytl::KyID &MediaAsset::ParentFolderID() const
{
    return impl_->parentFolderID;
}

void MediaAsset::SetParentFolderID(const kytl::KyID &id)
{
    impl_->parentFolderID = id;
}

void MediaAsset::ClearParentBinFolder()
{
    impl_->parentFolderID = kytl::KyID();
}

WideString MediaAsset::Filename() const
{
    const KyScopedLock hold(ShortLock());
    return impl_->path.filename;
}

bool MediaAsset::IsImageSequence() const
{
    return impl_->isImageSequence;
}

MediaAsset::OverrideOptions &MediaAsset::Override()
{
    return impl_->override;
}

const MediaAsset::OverrideOptions &MediaAsset::Override() const
{
    return impl_->override;
}

KyCriticalSection &MediaAsset::Mutex() const
{
    return *impl_->lock;
}

KyCriticalSection &MediaAsset::ShortLock() const
{
    return *impl_->shortLock;
}

bool MediaAsset::IsDirty() const
{
    return impl_->isDirty;
}

void MediaAsset::SetDirty(bool dirty)
{
    impl_->isDirty = dirty;
}

} // namespace marlet::project
