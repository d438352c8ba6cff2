#pragma once

#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/platform/media/KyAbstractMediaFile.h>
#include <marlet/platform/media/OpenMedia.h>

#include <memory>
#include <optional>
#include <string>

namespace kyh::media
{

class MediaFile final : public KyAbstractMediaFile
{
public:
    /// With a frame rate, an image sequence. @throws MediaFailure
    explicit MediaFile(std::string path, std::optional<double> sequenceRate = std::nullopt);

    std::shared_ptr<KyAbstractMediaStream> Stream(int kind) override;
    void NotifyRelinked() override;
    int Wake() override;
    int Sleep() override;

private:
    OpenedMedia Open() const;
    void WakeStreams();
    void WakeWith(OpenedMedia media);

    const std::string path_;
    const std::optional<double> sequenceRate_;
    kytl::thread::KyCriticalSection lock_; ///< of what follows
    FileSourcePtr source_;
    std::shared_ptr<VideoStream> video_;
    std::shared_ptr<AudioStream> audio_;
    bool isAsleep_ = false;
};

} // namespace kyh::media
