#pragma once

#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/KyMedia.h>
#include <marlet/platform/media/MediaResources.h>
#include <marlet/platform/media/contents/OpenMedia.h>

#include <memory>
#include <optional>
#include <string>

namespace kyh::media
{

class MediaFile final : public KyAbstractMediaFile
{
public:
    struct Unopened {
    };

    /// With a frame rate, an image sequence. @throws MediaFailure
    MediaFile(std::string path, MediaResourcesPtr resources,
              std::optional<double> sequenceRate = std::nullopt);
    /// Sleeps until it is opened by Wake, and has no streams until then.
    MediaFile(Unopened, std::string path, MediaResourcesPtr resources, std::optional<double> sequenceRate);

    std::shared_ptr<KyAbstractMediaStream> Stream(int kind) override;
    void NotifyRelinked() override;
    int Wake() override;
    int Sleep() override;
    int State() const override;

private:
    OpenedMedia Open() const;
    bool IsUsable() const;
    bool IsUnchanged() const;
    void WakeStreams();
    void Take(OpenedMedia media);

    const std::string path_;
    const MediaResourcesPtr resources_;
    const std::optional<double> sequenceRate_;
    kytl::thread::KyCriticalSection sleeping_;     ///< held while the file falls asleep or wakes
    mutable kytl::thread::KyCriticalSection lock_; ///< of what follows, never held while a file is read
    FileSourcePtr source_;
    std::shared_ptr<VideoStream> video_;
    std::shared_ptr<AudioStream> audio_;
    bool isAsleep_ = false;
    int state_ = kSuccess;
};

} // namespace kyh::media
