#pragma once

#include <marlet/foundation/Strings.h>
#include <marlet/platform/media/KyMedia.h>
#include <marlet/platform/media/MediaResources.h>
#include <marlet/project/WorkAhead.h>

#include <optional>
#include <unordered_map>
#include <vector>

namespace marlet::project
{

class MediaProgress;

/// What is to be opened: a file or, with frames per second, an image sequence.
struct MediaRequest {
    WideString path;
    std::optional<double> frameRate;

    friend bool operator==(const MediaRequest &, const MediaRequest &) = default;
};

struct MediaFileEntry {
    kyh::media::KyAbstractMediaFile *file = nullptr; ///< null if it could not be opened
    int code = kyh::media::kFailed;

    /// Of the file as it is by now, or of the attempt to open it.
    int State() const;
};

/// Paths that differ only in case are one.
WideString KeyOf(WideString path);
MediaFileEntry OpenMedia(const MediaRequest &request, const kyh::media::MediaResourcesPtr &resources);

/// Opens the files of a load on all cores, ahead of the thread that reads the project and takes them in their
/// order. That thread gets and hears what it would if each file were opened when it is taken.
class MediaLoad
{
public:
    /// @param requests one for each key; those that are never taken are released again
    MediaLoad(std::vector<MediaRequest> requests, kyh::media::MediaResourcesPtr resources,
              MediaProgress *progress);
    MediaLoad(const MediaLoad &) = delete;
    MediaLoad &operator=(const MediaLoad &) = delete;
    ~MediaLoad();

    /// The file becomes the caller's. What failed once in this load is not tried again. After a cancel the
    /// file is one that was not opened.
    MediaFileEntry Take(const MediaRequest &request);
    /// Tells of the file that was taken last, if it was opened for it. May cancel; what it throws is the
    /// host's.
    void Tell();
    bool IsCancelled() const { return isCancelled_; }

private:
    struct Item {
        MediaRequest request;
        MediaFileEntry opened;
        bool isTaken = false;
    };

    static std::vector<Item> ItemsOf(std::vector<MediaRequest> requests);
    void ReleaseUntaken();

    const kyh::media::MediaResourcesPtr resources_;
    MediaProgress *const progress_;
    std::vector<Item> items_;
    std::unordered_map<WideString, std::size_t> itemsByKey_;
    const Item *untold_ = nullptr;
    int told_ = 0;
    bool isCancelled_ = false;
    WorkAhead opening_; ///< last: it stops before what it fills in goes
};

} // namespace marlet::project
