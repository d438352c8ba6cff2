#pragma once

#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class MediaAsset;
class XmlCursor;
struct MediaManager_Impl;

/// Opens media files, one for each path, and owns them until its destruction; paths that differ only in case
/// are one. A file that cannot be opened is no error: the asset is offline.
///
/// Belongs to the thread that edits the project; its assets may be in use on other threads meanwhile.
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

    /// Lets all open files sleep or wake, whatever their assets. No status changes.
    void SleepAll();
    void WakeAll();

private:
    friend class AssetList;

    std::shared_ptr<MediaAsset> CreateMediaAsset(const XmlCursor &element);
    void RestoreMediaFile(std::shared_ptr<MediaAsset> &asset);

    std::unique_ptr<MediaManager_Impl> impl_;
};

} // namespace marlet::project
