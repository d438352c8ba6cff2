#include <marlet/project/MediaAudioStream.h>

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/platform/media/KyAbstractAudioStream.h>

namespace marlet::project
{

using kytl::thread::KyCriticalSection;
using kytl::thread::KyScopedLock;

struct MediaAudioStream_Impl {
    std::shared_ptr<kyh::media::KyAbstractAudioStream> stream;
    KyCriticalSection lock; ///< guards the conformed file
    bool readyToPreview = false;
    MediaAudioStream::FileHandle conformedFile;
};

MediaAudioStream::MediaAudioStream(std::shared_ptr<kyh::media::KyAbstractAudioStream> stream)
    : impl_(std::make_unique<MediaAudioStream_Impl>())
{
    impl_->stream = std::move(stream);
}

MediaAudioStream::~MediaAudioStream()
{
    CloseConformedFile();
}

unsigned int MediaAudioStream::SampleRate() const
{
    return impl_->stream->SampleRate();
}

unsigned char MediaAudioStream::BitsPerSample() const
{
    return impl_->stream->BitsPerSample();
}

unsigned char MediaAudioStream::ChannelCount() const
{
    return impl_->stream->ChannelCount();
}

unsigned long long MediaAudioStream::SampleCount() const
{
    return impl_->stream->SampleCount();
}

kytl::NarrowString MediaAudioStream::DurationTimeCode() const
{
    return impl_->stream->DurationTimeCode();
}

kyh::media::KyAudioCodec MediaAudioStream::Codec() const
{
    return impl_->stream->Codec();
}

std::shared_ptr<kyh::media::KyAbstractCodecInfo> MediaAudioStream::CodecInfo() const
{
    return impl_->stream->CodecInfo();
}

int MediaAudioStream::GetSamples(long long start, int count, unsigned char *buffer, int size, int *out) const
{
    return impl_->stream->GetSamples(start, count, buffer, size, out);
}

double MediaAudioStream::FrameRate() const
{
    return 30.0;
}

int MediaAudioStream::FrameCount() const
{
    return FrameCount(FrameRate());
}

int MediaAudioStream::FrameCount(double frameRate) const
{
    return Truncate<int>(std::ceil(DurationSeconds() * AudioVideoSettings::IntegerFrameRate(frameRate)));
}

double MediaAudioStream::DurationSeconds() const
{
    return static_cast<double>(SampleCount()) / SampleRate();
}

int MediaAudioStream::DurationMilliseconds() const
{
    return Truncate<int>(DurationSeconds() * 1000.0);
}

bool MediaAudioStream::ReadyToPreview() const
{
    return impl_->readyToPreview;
}

void MediaAudioStream::SetReadyToPreview(bool ready)
{
    impl_->readyToPreview = ready;
}

const MediaAudioStream::FileHandle &MediaAudioStream::ConformedFile() const
{
    // Waits for a change that is under way.
    const KyScopedLock hold(impl_->lock);
    return impl_->conformedFile;
}

void MediaAudioStream::SetConformedFile(std::FILE *file, long long length)
{
    const KyScopedLock hold(impl_->lock);
    FileHandle &conformed = impl_->conformedFile;
    // The same file may be set again, with another length.
    if (conformed.file && conformed.file != file)
        std::fclose(conformed.file);
    conformed = {.file = file, .length = length};
}

void MediaAudioStream::CloseConformedFile()
{
    SetConformedFile(nullptr, 0);
}

const std::shared_ptr<kyh::media::KyAbstractAudioStream> &MediaAudioStream::SourceAudioStream() const
{
    return impl_->stream;
}

} // namespace marlet::project
