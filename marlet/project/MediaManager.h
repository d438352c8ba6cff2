#pragma once

#include <marlet/foundation/Strings.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

namespace marlet::project
{

/// What an index folder keeps of a media file.
struct KeptMedia {
    WideString place;        ///< the path of its entry, whether there is one or not
    bool isKept = false;     ///< for the file as it is
    std::uint64_t bytes = 0; ///< of the entry; the rest is 0 where nothing is kept
    int frames = 0;
    int framePackets = 0;
    std::int64_t samples = 0; ///< of each channel
    int samplePackets = 0;
};

class MediaAsset;
class MediaLoad;
class MediaProgress;
class XmlCursor;
struct MediaManager_Impl;
struct MediaRequest;

/// Opens media files, one for each path, and owns them until its destruction; paths that differ only in case
/// are one. A file that cannot be opened is no error: the asset is offline. Its files share a budget of
/// memory for decoded frames and sound, and a folder that keeps what was learnt of them.
///
/// Several projects may share a manager, which lives as long as the last of them. Any thread may call it; an
/// asset may be in use on other threads meanwhile. It opens many files on threads of its own, which end
/// before the operation does.
class MARLET_EXPORT MediaManager
{
public:
    MediaManager();
    MediaManager(const MediaManager &) = delete;
    MediaManager &operator=(const MediaManager &) = delete;
    ~MediaManager();

    /// A path that could not be opened before is not tried again here.
    std::shared_ptr<MediaAsset> CreateMediaAsset(const WideString &path);
    /// `path` names a member of the sequence, which becomes overridden to the rate, in frames per second.
    std::shared_ptr<MediaAsset> CreateImageSequence(const WideString &path, double frameRate);
    /// CreateMediaAsset for each path. The files are opened on all cores; the result is as if one were opened
    /// after the other.
    std::vector<std::shared_ptr<MediaAsset>> CreateMediaAssets(const std::vector<WideString> &paths,
                                                               MediaProgress *progress = nullptr);
    /// Opens the asset's file if nobody has, also if it could not be opened before.
    /// @throws XmlParseException, InvalidProjectVersionException, std::runtime_error, boost::bad_lexical_cast
    std::shared_ptr<MediaAsset> CreateMediaAssetFromXml(const WideString &xml);
    /// The same from a QDomElement.
    std::shared_ptr<MediaAsset> CreateMediaAssetFromXmlNode(void *element);

    /// Points an asset at another file. The name stays.
    void RelinkMediaFile(std::shared_ptr<MediaAsset> &asset, const WideString &path);
    void RelinkImageSequence(std::shared_ptr<MediaAsset> &asset, const WideString &path);
    /// Opens the asset's path anew.
    void TryReload(std::shared_ptr<MediaAsset> &asset);

    /// Lets all open files sleep or wake, whatever their assets. Waking opens what a cancelled load left
    /// unopened. The status of an asset follows what became of its file.
    void SleepAll();
    void WakeAll();

    /// How many bytes of decoded frames and sound, and of decoders that rest, are kept for the next time, 256
    /// MB unless it is set. A smaller one lets go at once of what is beyond it; 0 keeps no frame.
    std::size_t CacheBudget() const;
    void SetCacheBudget(std::size_t bytes);
    /// A folder that keeps what opening found out of files, so that the next time costs a fraction; it may be
    /// shared with other processes. Empty, as at first, for none.
    WideString IndexFolder() const;
    void SetIndexFolder(const WideString &folder);
    /// What is kept of a file, without opening it. Nothing without a folder.
    std::optional<KeptMedia> KeptOf(const WideString &path) const;

private:
    friend class AssetList;

    /// Begins to open what the elements of a list of assets name and nobody has open.
    std::unique_ptr<MediaLoad> BeginLoad(const XmlCursor &assets, MediaProgress *progress);
    std::shared_ptr<MediaAsset> CreateMediaAsset(const XmlCursor &element, MediaLoad &load);
    void RestoreMediaFile(std::shared_ptr<MediaAsset> &asset, MediaLoad *load = nullptr);
    void Relink(std::shared_ptr<MediaAsset> &asset, const MediaRequest &request);

    std::unique_ptr<MediaManager_Impl> impl_;
};

} // namespace marlet::project
