#include <marlet/platform/media/MediaFile.h>

#include <marlet/platform/media/MediaFailure.h>

#include <utility>

namespace kyh::media
{

using kytl::thread::KyScopedLock;

namespace
{

/// A stream that is handed out keeps its facts: one with others is of no use, and another takes its place.
template <class Stream, class Facts, class Source>
std::shared_ptr<Stream> Renewed(const std::shared_ptr<Stream> &stream, const Facts &facts,
                                std::unique_ptr<Source> source)
{
    if (stream && source && stream->Facts() == facts) {
        stream->Wake(std::move(source));
        return stream;
    }
    if (stream)
        stream->Retire();
    return source ? std::make_shared<Stream>(facts, std::move(source)) : nullptr;
}

} // namespace

MediaFile::MediaFile(std::string path, MediaResourcesPtr resources, std::optional<double> sequenceRate)
    : path_(std::move(path)), resources_(std::move(resources)), sequenceRate_(sequenceRate)
{
    Take(Open());
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
    const KyScopedLock sleeping(sleeping_);
    if (isAsleep_)
        return kNothingToReport;
    if (video_)
        video_->Sleep();
    if (audio_)
        audio_->Sleep();
    if (source_)
        source_->Close();
    const KyScopedLock lock(lock_);
    isAsleep_ = true;
    return kSuccess;
}

int MediaFile::Wake()
{
    const KyScopedLock sleeping(sleeping_);
    if (IsUsable())
        return kNothingToReport;
    const int code = CodeOf([this] {
        if (IsUnchanged())
            WakeStreams();
        else
            Take(Open());
    });
    const KyScopedLock lock(lock_);
    isAsleep_ = isAsleep_ && code != kSuccess;
    return state_ = code;
}

int MediaFile::State() const
{
    const KyScopedLock lock(lock_);
    return state_ == kSuccess && source_ ? source_->State() : state_;
}

bool MediaFile::IsUsable() const
{
    return !isAsleep_ && State() == kSuccess;
}

bool MediaFile::IsUnchanged() const
{
    if (!source_ || source_->Look() != kSuccess)
        return false;
    source_->Close();
    return true;
}

void MediaFile::WakeStreams()
{
    if (video_)
        video_->Wake();
    if (audio_)
        audio_->Wake();
}

void MediaFile::Take(OpenedMedia media)
{
    auto video = Renewed(video_, media.videoFacts, std::move(media.frames));
    auto audio = Renewed(audio_, media.soundFacts, std::move(media.sound));
    const KyScopedLock lock(lock_);
    source_ = std::move(media.source);
    video_ = std::move(video);
    audio_ = std::move(audio);
}

} // namespace kyh::media
