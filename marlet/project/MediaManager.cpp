#include <marlet/project/MediaManager.h>

#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAsset.h>

#include <QChar>

#include <algorithm>
#include <unordered_map>
#include <vector>

namespace marlet::project
{

using kyh::media::KyAbstractMediaFile;

namespace
{

struct MediaFileEntry {
    KyAbstractMediaFile *file = nullptr; ///< null if it could not be opened
    int code = kyh::media::kFailed;
};

/// Paths that differ only in case are one.
WideString KeyOf(WideString path)
{
    std::ranges::transform(path, path.begin(), [](char16_t unit) { return QChar(unit).toLower().unicode(); });
    return path;
}

MediaFileEntry OpenFile(const WideString &path)
{
    MediaFileEntry opened;
    opened.code = kyh::media::KyMediaFileCreate(path.c_str(), &opened.file);
    return opened;
}

MediaFileEntry OpenSequence(const WideString &path, double frameRate)
{
    MediaFileEntry opened;
    opened.code = kyh::media::KyImageSequenceCreate(path.c_str(), frameRate, &opened.file);
    return opened;
}

/// Opens what an asset is made of at a path, as it is overridden.
MediaFileEntry OpenFor(const MediaAsset &asset, const WideString &path)
{
    return asset.IsImageSequence() ? OpenSequence(path, asset.Override().frameRate) : OpenFile(path);
}

} // namespace

struct MediaManager_Impl {
    std::unordered_map<WideString, MediaFileEntry> files;
    /// Assets may still point at a file whose path was forgotten.
    std::vector<KyAbstractMediaFile *> forgotten;

    MediaManager_Impl() = default;
    MediaManager_Impl(const MediaManager_Impl &) = delete;
    MediaManager_Impl &operator=(const MediaManager_Impl &) = delete;
    ~MediaManager_Impl()
    {
        for (const auto &[key, entry] : files)
            kyh::media::KyMediaFileRelease(entry.file);
        for (KyAbstractMediaFile *file : forgotten)
            kyh::media::KyMediaFileRelease(file);
    }

    /// What is known of the path, also that it could not be opened, or else what `open` gives.
    template <class Open> MediaFileEntry Find(const WideString &path, Open &&open)
    {
        const auto [position, isNew] = files.try_emplace(KeyOf(path));
        if (isNew)
            position->second = open();
        return position->second;
    }

    void Forget(const WideString &path)
    {
        const auto position = files.find(KeyOf(path));
        if (position == files.end())
            return;
        if (position->second.file)
            forgotten.push_back(position->second.file);
        files.erase(position);
    }
};

MediaManager::MediaManager() : impl_(std::make_unique<MediaManager_Impl>())
{
}

MediaManager::~MediaManager() = default;

std::shared_ptr<MediaAsset> MediaManager::CreateMediaAsset(const WideString &path)
{
    const MediaFileEntry entry = impl_->Find(path, [&] { return OpenFile(path); });
    return std::shared_ptr<MediaAsset>(new MediaAsset(path, entry.file, entry.code, false));
}

std::shared_ptr<MediaAsset> MediaManager::CreateImageSequence(const WideString &path, double frameRate)
{
    const MediaFileEntry entry = impl_->Find(path, [&] { return OpenSequence(path, frameRate); });
    std::shared_ptr<MediaAsset> asset(new MediaAsset(path, entry.file, entry.code, true));
    // The files do not say their rate, so that it is kept with the asset.
    asset->Override().overrideFrameRate = true;
    asset->Override().frameRate = frameRate;
    return asset;
}

std::shared_ptr<MediaAsset> MediaManager::CreateMediaAssetFromXml(const WideString &xml)
{
    std::shared_ptr<MediaAsset> asset(new MediaAsset(xml, Deserializer()));
    RestoreMediaFile(asset);
    return asset;
}

std::shared_ptr<MediaAsset> MediaManager::CreateMediaAssetFromXmlNode(void *element)
{
    return CreateMediaAssetFromXml(XmlFromDom(element));
}

std::shared_ptr<MediaAsset> MediaManager::CreateMediaAsset(const XmlCursor &element)
{
    std::shared_ptr<MediaAsset> asset(new MediaAsset(element, Deserializer()));
    RestoreMediaFile(asset);
    return asset;
}

void MediaManager::RestoreMediaFile(std::shared_ptr<MediaAsset> &asset)
{
    const WideString path = asset->Filename();
    MediaFileEntry &entry = impl_->files[KeyOf(path)];
    if (!entry.file)
        entry = OpenFor(*asset, path);
    asset->SetMediaFile(entry.file);
    asset->SetMediaFileStatus(entry.code);
}

void MediaManager::RelinkMediaFile(std::shared_ptr<MediaAsset> &asset, const WideString &path)
{
    impl_->Forget(asset->Filename());
    const MediaFileEntry entry = impl_->Find(path, [&] { return OpenFile(path); });
    asset->Relink(path, entry.file, entry.code);
}

void MediaManager::RelinkImageSequence(std::shared_ptr<MediaAsset> &asset, const WideString &path)
{
    impl_->Forget(asset->Filename());
    const double frameRate = asset->Override().frameRate;
    const MediaFileEntry entry = impl_->Find(path, [&] { return OpenSequence(path, frameRate); });
    asset->Relink(path, entry.file, entry.code);
}

void MediaManager::TryReload(std::shared_ptr<MediaAsset> &asset)
{
    const WideString path = asset->Filename();
    impl_->Forget(path);
    const MediaFileEntry entry = impl_->Find(path, [&] { return OpenFor(*asset, path); });
    asset->Relink(path, entry.file, entry.code);
}

void MediaManager::SleepAll()
{
    for (const auto &[key, entry] : impl_->files)
        if (entry.file)
            entry.file->Sleep();
}

void MediaManager::WakeAll()
{
    for (const auto &[key, entry] : impl_->files)
        if (entry.file)
            entry.file->Wake();
}

} // namespace marlet::project
