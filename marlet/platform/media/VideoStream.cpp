#include <marlet/platform/media/VideoStream.h>

#include <marlet/platform/media/CodecInfo.h>
#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/decoding/StreamCache.h>

#include <cstring>
#include <utility>

namespace kyh::media
{

using kytl::thread::KyScopedLock;

VideoStream::VideoStream(const VideoFacts &facts, std::unique_ptr<FrameSource> frames)
    : facts_(facts),
      frames_(std::move(frames)),
      converter_(facts, frames_->Cache().Frames(), frames_->Cache().Scalers())
{
}

void VideoStream::Sleep()
{
    const KyScopedLock lock(lock_);
    frames_->Close();
    isAsleep_ = true;
}

void VideoStream::Wake()
{
    const KyScopedLock lock(lock_);
    isAsleep_ = false;
}

void VideoStream::Wake(std::unique_ptr<FrameSource> frames)
{
    const KyScopedLock lock(lock_);
    frames_ = std::move(frames);
    isAsleep_ = false;
}

void VideoStream::Retire()
{
    const KyScopedLock lock(lock_);
    frames_->Close();
    isRetired_ = true;
}

int VideoStream::Width() const
{
    return facts_.turn.isTransposed ? facts_.height : facts_.width;
}

int VideoStream::Height() const
{
    return facts_.turn.isTransposed ? facts_.width : facts_.height;
}

double VideoStream::PixelAspectRatio() const
{
    return facts_.pixelAspect;
}

int VideoStream::FrameCount() const
{
    return facts_.frameCount;
}

double VideoStream::FrameRate() const
{
    return facts_.frameRate;
}

int VideoStream::FieldOrder() const
{
    return facts_.fieldOrder;
}

KyVideoCodec VideoStream::Codec() const
{
    return facts_.isStill ? KyVideoCodec::Still : VideoCodecOf(facts_.codec);
}

std::shared_ptr<KyAbstractCodecInfo> VideoStream::CodecInfo() const
{
    return std::make_shared<media::CodecInfo>(facts_.codec, facts_.profile);
}

int VideoStream::PixelBitCount() const
{
    return facts_.hasAlpha ? 32 : 24;
}

KyChannelOrder VideoStream::PixelChannelOrder() const
{
    return facts_.hasAlpha ? KyChannelOrder::BGRA : KyChannelOrder::RGB;
}

int VideoStream::FrameBufferSize(KyImageChannels channels) const
{
    return facts_.width * facts_.height * (channels == KyImageChannels::Four ? 4 : 3);
}

/// A picture that is asked for again is kept as it is handed out. Keeping the others too would cost each a
/// copy.
void VideoStream::FillPicture(int frame, KyImageChannels channels, unsigned char *buffer, std::size_t bytes)
{
    constexpr std::int64_t kForms = 2;
    StreamCache &cache = frames_->Cache();
    const std::int64_t picture = frame * kForms + (channels == KyImageChannels::Four);
    const FramePtr kept = NewFrame();
    if (cache.Find(FrameCache::Kind::Picture, picture, *kept)) {
        std::memcpy(buffer, kept->buf[0]->data, bytes);
        return;
    }
    converter_.Convert(*frames_->Frame(frame), channels, buffer);
    if (std::exchange(lastPicture_, picture) == picture)
        cache.PutBytes(FrameCache::Kind::Picture, picture, buffer, bytes);
}

int VideoStream::GetFrame(int frame, KyImageChannels channels, unsigned char *buffer, int size, int *out,
                          [[maybe_unused]] int flags)
{
    return CodeOf([&] {
        if (channels != KyImageChannels::Three && channels != KyImageChannels::Four)
            throw MediaFailure{kFailed};
        if (frame < 0 || frame >= facts_.frameCount)
            throw MediaFailure{kOutOfRange};
        const int bytes = FrameBufferSize(channels);
        if (!buffer || size < bytes)
            throw MediaFailure{kBufferTooSmall};
        const KyScopedLock lock(lock_);
        if (isRetired_)
            throw MediaFailure{kDamaged};
        if (isAsleep_)
            throw MediaFailure{kAsleep};
        FillPicture(frame, channels, buffer, static_cast<std::size_t>(bytes));
        if (out)
            *out = bytes;
    });
}

} // namespace kyh::media
