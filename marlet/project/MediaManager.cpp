#include <marlet/project/MediaManager.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/foundation/xml/DomBridge.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaLoad.h>
#include <marlet/project/MediaPaths.h>

#include <exception>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace marlet::project
{

using kyh::media::KyAbstractMediaFile;
using kytl::thread::KyScopedLock;

namespace
{

/// What an asset is made of, as it is overridden.
MediaRequest RequestOf(const MediaAsset &asset)
{
    return {asset.Filename(),
            asset.IsImageSequence() ? std::optional(asset.Override().frameRate) : std::nullopt};
}

/// @throws what the reading of the element throws
MediaRequest RequestOf(const XmlCursor &element)
{
    MediaRequest request;
    bool isImageSequence = false;
    double frameRate = 0;
    element.RequireHeader("MediaAsset", 0);
    element.Child("Filename", request.path);
    if (const MediaPaths *const paths = MediaPaths::Current())
        request.path = paths->Read(request.path);
    element.Child("IsImageSequence", isImageSequence);
    element.Child("FrameRate", frameRate);
    if (isImageSequence)
        request.frameRate = frameRate;
    return request;
}

/// Those of the elements before the one that ends the load, if one does.
std::vector<MediaRequest> RequestsOf(const XmlCursor &assets)
{
    std::vector<MediaRequest> requests;
    try {
        for (XmlCursor child = assets.FirstChild(); !child.IsNull(); child = child.Next())
            if (child.Is("MediaAsset"))
                requests.push_back(RequestOf(child));
    } catch (const std::exception &) {
        // It is thrown again when the asset is read.
    }
    return requests;
}

// Whether an entry of a path will do, or the path is opened:

bool IsTried(const MediaFileEntry &entry)
{
    return entry.State() != kyh::media::kAsleep;
}

bool IsUsable(const MediaFileEntry &entry)
{
    return entry.State() == kyh::media::kSuccess;
}

using WillDo = bool (*)(const MediaFileEntry &);

} // namespace

struct MediaManager_Impl {
    kyh::media::MediaResourcesPtr resources = std::make_shared<kyh::media::MediaResources>();
    mutable kytl::thread::KyCriticalSection lock; ///< of what follows; nothing is opened under it
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

    std::optional<MediaFileEntry> Find(const WideString &key, WillDo willDo) const
    {
        const KyScopedLock hold(lock);
        const auto position = files.find(key);
        if (position == files.end() || !willDo(position->second))
            return std::nullopt;
        return position->second;
    }

    MediaFileEntry FindOrOpen(const MediaRequest &request, WillDo willDo, MediaLoad *load = nullptr)
    {
        const WideString key = KeyOf(request.path);
        if (const auto kept = Find(key, willDo))
            return *kept;
        // A load that is cancelled opens nothing in place of what there is.
        if (load && load->IsCancelled())
            willDo = [](const MediaFileEntry &entry) { return entry.file != nullptr; };
        const MediaFileEntry opened = load ? load->Take(request) : OpenMedia(request, resources);
        const KyScopedLock hold(lock);
        if (const auto kept = Find(key, willDo)) {
            kyh::media::KyMediaFileRelease(opened.file);
            return *kept;
        }
        MediaFileEntry &entry = files[key];
        if (entry.file)
            forgotten.push_back(entry.file);
        return entry = opened;
    }

    void Forget(const WideString &path)
    {
        const KyScopedLock hold(lock);
        const auto position = files.find(KeyOf(path));
        if (position == files.end())
            return;
        if (position->second.file)
            forgotten.push_back(position->second.file);
        files.erase(position);
    }

    std::vector<KyAbstractMediaFile *> Files() const
    {
        const KyScopedLock hold(lock);
        std::vector<KyAbstractMediaFile *> all = forgotten;
        for (const auto &[key, entry] : files)
            if (entry.file)
                all.push_back(entry.file);
        return all;
    }

    /// Of requests with one key the first counts: what it opens is there for the others.
    std::unique_ptr<MediaLoad> BeginLoad(std::vector<MediaRequest> requests, WillDo willDo,
                                         MediaProgress *progress) const
    {
        std::unordered_set<WideString> keys;
        std::erase_if(requests, [&](const MediaRequest &request) {
            WideString key = KeyOf(request.path);
            return Find(key, willDo) || !keys.insert(std::move(key)).second;
        });
        return std::make_unique<MediaLoad>(std::move(requests), resources, progress);
    }
};

MediaManager::MediaManager() : impl_(std::make_unique<MediaManager_Impl>())
{
}

MediaManager::~MediaManager() = default;

std::shared_ptr<MediaAsset> MediaManager::CreateMediaAsset(const WideString &path)
{
    const MediaFileEntry entry = impl_->FindOrOpen({path, std::nullopt}, IsTried);
    return std::shared_ptr<MediaAsset>(new MediaAsset(path, entry.file, entry.State(), false));
}

std::vector<std::shared_ptr<MediaAsset>> MediaManager::CreateMediaAssets(const std::vector<WideString> &paths,
                                                                         MediaProgress *progress)
{
    std::vector<MediaRequest> requests;
    for (const WideString &path : paths)
        requests.push_back({path, std::nullopt});
    const auto load = impl_->BeginLoad(requests, IsTried, progress);
    std::vector<std::shared_ptr<MediaAsset>> assets;
    for (const MediaRequest &request : requests) {
        const MediaFileEntry entry = impl_->FindOrOpen(request, IsTried, load.get());
        assets.emplace_back(new MediaAsset(request.path, entry.file, entry.State(), false));
        load->Tell();
    }
    return assets;
}

std::shared_ptr<MediaAsset> MediaManager::CreateImageSequence(const WideString &path, double frameRate)
{
    const MediaFileEntry entry = impl_->FindOrOpen({path, frameRate}, IsTried);
    std::shared_ptr<MediaAsset> asset(new MediaAsset(path, entry.file, entry.State(), true));
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
    Require(element, "element");
    return CreateMediaAssetFromXml(XmlFromDom(element));
}

std::unique_ptr<MediaLoad> MediaManager::BeginLoad(const XmlCursor &assets, MediaProgress *progress)
{
    return impl_->BeginLoad(RequestsOf(assets), IsUsable, progress);
}

std::shared_ptr<MediaAsset> MediaManager::CreateMediaAsset(const XmlCursor &element, MediaLoad &load)
{
    std::shared_ptr<MediaAsset> asset(new MediaAsset(element, Deserializer()));
    RestoreMediaFile(asset, &load);
    load.Tell();
    return asset;
}

void MediaManager::RestoreMediaFile(std::shared_ptr<MediaAsset> &asset, MediaLoad *load)
{
    const MediaFileEntry entry = impl_->FindOrOpen(RequestOf(*asset), IsUsable, load);
    asset->SetMediaFile(entry.file);
    asset->SetMediaFileStatus(entry.State());
}

void MediaManager::RelinkMediaFile(std::shared_ptr<MediaAsset> &asset, const WideString &path)
{
    Require(asset, "asset");
    Relink(asset, {path, std::nullopt});
}

void MediaManager::RelinkImageSequence(std::shared_ptr<MediaAsset> &asset, const WideString &path)
{
    Require(asset, "asset");
    Relink(asset, {path, asset->Override().frameRate});
}

void MediaManager::TryReload(std::shared_ptr<MediaAsset> &asset)
{
    Require(asset, "asset");
    Relink(asset, RequestOf(*asset));
}

void MediaManager::Relink(std::shared_ptr<MediaAsset> &asset, const MediaRequest &request)
{
    impl_->Forget(asset->Filename());
    const MediaFileEntry entry = impl_->FindOrOpen(request, IsTried);
    asset->Relink(request.path, entry.file, entry.State());
}

void MediaManager::SleepAll()
{
    for (KyAbstractMediaFile *file : impl_->Files())
        file->Sleep();
}

void MediaManager::WakeAll()
{
    const std::vector<KyAbstractMediaFile *> files = impl_->Files();
    WorkAhead waking(files.size(), [&files](std::size_t number) { files[number]->Wake(); });
    for (std::size_t number = 0; number < files.size(); ++number)
        waking.Await(number);
}

std::size_t MediaManager::CacheBudget() const
{
    return impl_->resources->Frames().Budget();
}

void MediaManager::SetCacheBudget(std::size_t bytes)
{
    impl_->resources->SetBudget(bytes);
}

WideString MediaManager::IndexFolder() const
{
    return FromUtf8(impl_->resources->Index().Path());
}

void MediaManager::SetIndexFolder(const WideString &folder)
{
    impl_->resources->Index().SetPath(ToUtf8(folder));
}

std::optional<KeptMedia> MediaManager::KeptOf(const WideString &path) const
{
    const auto kept = impl_->resources->Index().Describe(ToUtf8(path));
    if (!kept)
        return std::nullopt;
    return KeptMedia{.place = FromUtf8(kept->place),
                     .isKept = kept->isKept,
                     .bytes = kept->bytes,
                     .frames = kept->frames,
                     .framePackets = kept->pictures,
                     .samples = kept->samples,
                     .samplePackets = kept->sounds};
}

} // namespace marlet::project
