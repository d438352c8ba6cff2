#include <marlet/platform/media/MediaFile.h>

#include <marlet/platform/media/MediaFailure.h>

#include <utility>

namespace kyh::media
{

using kytl::thread::KyScopedLock;

MediaFile::MediaFile(std::string path, MediaResourcesPtr resources, std::optional<double> sequenceRate)
    : path_(std::move(path)), resources_(std::move(resources)), sequenceRate_(sequenceRate)
{
    MakeStreams(Open());
}

MediaFile::MediaFile(Unopened, std::string path, MediaResourcesPtr resources,
                     std::optional<double> sequenceRate)
    : path_(std::move(path)),
      resources_(std::move(resources)),
      sequenceRate_(sequenceRate),
      isAsleep_(true),
      state_(kAsleep)
{
}

void MediaFile::MakeStreams(OpenedMedia media)
{
    source_ = std::move(media.source);
    if (media.frames)
        video_ = std::make_shared<VideoStream>(media.videoFacts, std::move(media.frames));
    if (media.sound)
        audio_ = std::make_shared<AudioStream>(media.soundFacts, std::move(media.sound));
}

OpenedMedia MediaFile::Open() const
{
    return sequenceRate_ ? OpenImageSequence(path_, *sequenceRate_, resources_)
                         : OpenMediaFile(path_, resources_);
}

std::shared_ptr<KyAbstractMediaStream> MediaFile::Stream(int kind)
{
    const KyScopedLock lock(lock_);
    switch (kind) {
    case kAudioStream:
        return audio_;
    case kVideoStream:
        return video_;
    default:
        return nullptr;
    }
}

void MediaFile::NotifyRelinked()
{
    Wake();
}

int MediaFile::Sleep()
{
    const KyScopedLock lock(lock_);
    if (isAsleep_)
        return kNothingToReport;
    if (video_)
        video_->Sleep();
    if (audio_)
        audio_->Sleep();
    if (source_)
        source_->Close();
    isAsleep_ = true;
    return kSuccess;
}

int MediaFile::Wake()
{
    const KyScopedLock lock(lock_);
    if (!isAsleep_)
        return kNothingToReport;
    state_ = CodeOf([&] {
        if (!video_ && !audio_)
            MakeStreams(Open());
        else if (source_ && source_->Reopen())
            WakeStreams();
        else
            WakeWith(Open());
        isAsleep_ = false;
    });
    return state_;
}

int MediaFile::State() const
{
    const KyScopedLock lock(lock_);
    return state_;
}

void MediaFile::WakeStreams()
{
    if (video_)
        video_->Wake();
    if (audio_)
        audio_->Wake();
}

/// Streams that are handed out keep their facts, so another file in the place of the old one is of no use.
void MediaFile::WakeWith(OpenedMedia media)
{
    const bool isSame = !media.frames == !video_ && !media.sound == !audio_ &&
                        (!video_ || media.videoFacts == video_->Facts()) &&
                        (!audio_ || media.soundFacts == audio_->Facts());
    if (!isSame)
        throw MediaFailure{kDamaged};
    source_ = std::move(media.source);
    if (video_)
        video_->Wake(std::move(media.frames));
    if (audio_)
        audio_->Wake(std::move(media.sound));
}

} // namespace kyh::media
