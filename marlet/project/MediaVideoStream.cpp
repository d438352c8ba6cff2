#include <marlet/project/MediaVideoStream.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/KyCriticalSection.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/platform/media/KyAbstractVideoStream.h>
#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAsset.h>

#include <QImage>
#include <boost/smart_ptr/shared_array.hpp>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>

namespace marlet::project
{

using kyh::media::KyImageChannels;
using kytl::thread::KyScopedLock;

namespace
{

/// The one flag that the media layer is ever handed.
constexpr int kFlags = 1;
constexpr std::int64_t kBytesPerPixel = 4;

/// Makes the scratch array at least so large. Its bytes are initialised, since what a failed decode leaves in
/// them is scaled all the same.
bool ReserveScratch(boost::shared_array<unsigned char> &scratch, unsigned int &scratchSize, unsigned int need)
{
    if (scratch && scratchSize >= need)
        return true;
    auto *bytes = new (std::nothrow) unsigned char[need]();
    if (!bytes)
        return false;
    scratch.reset(bytes);
    scratchSize = need;
    return true;
}

/// The pixels, with straight alpha like theirs.
QImage ScaledToFit(const unsigned char *pixels, const QSize &size, const QSize &limit)
{
    const QImage picture(pixels, size.width(), size.height(), QImage::Format_ARGB32);
    return picture.scaled(limit, Qt::KeepAspectRatio, Qt::SmoothTransformation)
        .convertToFormat(QImage::Format_ARGB32);
}

} // namespace

MediaVideoStream::MediaVideoStream(std::shared_ptr<kyh::media::KyAbstractVideoStream> stream,
                                   const MediaAsset *asset)
    : asset_(asset), stream_(std::move(stream))
{
}

int MediaVideoStream::Width() const
{
    return stream_->Width();
}

int MediaVideoStream::Height() const
{
    return stream_->Height();
}

int MediaVideoStream::FrameCount() const
{
    return stream_->FrameCount();
}

int MediaVideoStream::FrameCount(double frameRate) const
{
    return Truncate<int>(FrameCount() * (frameRate / FrameRate()));
}

double MediaVideoStream::FrameRate() const
{
    const MediaAsset::OverrideOptions &override = asset_->Override();
    return override.overrideFrameRate ? override.frameRate : OriginalFrameRate();
}

double MediaVideoStream::OriginalFrameRate() const
{
    const double rate = stream_->FrameRate();
    return rate < 1.0 ? 1.0 : rate;
}

PAR MediaVideoStream::AspectRatio() const
{
    const MediaAsset::OverrideOptions &override = asset_->Override();
    return override.overridePAR ? override.par : OriginalAspectRatio();
}

PAR MediaVideoStream::OriginalAspectRatio() const
{
    if (Codec() == kyh::media::KyVideoCodec::Shapeless)
        return Width() == 1440 && Height() == 1080 ? PAR::FourThirds : PAR::Square;
    const PAR par = AudioVideoSettings::PARFromValue(stream_->PixelAspectRatio());
    // A file has no place for a ratio of its own.
    return par == PAR::Custom ? PAR::Square : par;
}

VideoFields MediaVideoStream::FieldsType() const
{
    const MediaAsset::OverrideOptions &override = asset_->Override();
    return override.overrideFields ? override.fields : OriginalFieldsType();
}

VideoFields MediaVideoStream::OriginalFieldsType() const
{
    switch (stream_->FieldOrder()) {
    case 2:
        return VideoFields::StandardDefinitionInterlaced;
    case 3:
        return VideoFields::HighDefinitionInterlaced;
    default:
        return VideoFields::Progressive;
    }
}

kyh::media::KyVideoCodec MediaVideoStream::Codec() const
{
    return stream_->Codec();
}

std::shared_ptr<kyh::media::KyAbstractCodecInfo> MediaVideoStream::CodecInfo() const
{
    return stream_->CodecInfo();
}

int MediaVideoStream::PixelBitCount() const
{
    return stream_->PixelBitCount();
}

kyh::media::KyChannelOrder MediaVideoStream::PixelChannelOrder() const
{
    return stream_->PixelChannelOrder();
}

int MediaVideoStream::FrameBufferSize(KyImageChannels channels) const
{
    return stream_->FrameBufferSize(channels);
}

int MediaVideoStream::FileFrame(double frameRate, int frame) const
{
    if (frame < 0 || frame >= FrameCount(frameRate))
        return -1;
    return Truncate<int>(frame * (FrameRate() / frameRate));
}

int MediaVideoStream::GetFrame(int frame, KyImageChannels channels, unsigned char *buffer, int size, int *out,
                               int flags) const
{
    const KyScopedLock hold(asset_->Mutex());
    if (frame < 0 || frame >= FrameCount())
        return kyh::media::kOutOfRange;
    return stream_->GetFrame(frame, channels, buffer, size, out, flags & kFlags);
}

int MediaVideoStream::GetFrame(double frameRate, int frame, KyImageChannels channels, unsigned char *buffer,
                               int size, int *out, int flags) const
{
    const KyScopedLock hold(asset_->Mutex());
    const int fileFrame = FileFrame(frameRate, frame);
    if (fileFrame < 0)
        return kyh::media::kOutOfRange;
    return stream_->GetFrame(fileFrame, channels, buffer, size, out, flags & kFlags);
}

int MediaVideoStream::GetFrame(double frameRate, int frame, int maxWidth, int maxHeight,
                               boost::shared_array<unsigned char> &scratch, unsigned int &scratchSize,
                               const boost::shared_array<unsigned char> &destination,
                               unsigned int destinationSize, int *width, int *height, int flags) const
{
    Require(width, "width");
    Require(height, "height");
    const KyScopedLock hold(asset_->Mutex());
    const int fileFrame = FileFrame(frameRate, frame);
    if (fileFrame < 0)
        return kyh::media::kOutOfRange;

    const auto decode = [&](unsigned char *buffer, unsigned int size) {
        const auto limit = std::min(size, static_cast<unsigned int>(std::numeric_limits<int>::max()));
        return stream_->GetFrame(fileFrame, KyImageChannels::Four, buffer, static_cast<int>(limit), nullptr,
                                 flags & kFlags);
    };
    *width = Width();
    *height = Height();
    if (maxWidth >= *width && maxHeight >= *height)
        return decode(destination.get(), destinationSize);

    const QSize size(std::exchange(*width, 0), std::exchange(*height, 0));
    const QSize limit(maxWidth, maxHeight);
    const int need = FrameBufferSize(KyImageChannels::Four);
    if (size.isEmpty() || limit.isEmpty() || need < kBytesPerPixel * size.width() * size.height() ||
        !ReserveScratch(scratch, scratchSize, need))
        return kyh::media::kFailed;
    const int code = decode(scratch.get(), need);
    const QImage scaled = ScaledToFit(scratch.get(), size, limit);
    *width = scaled.width();
    *height = scaled.height();
    if (scaled.sizeInBytes() > destinationSize)
        return code ? code : kyh::media::kBufferTooSmall;
    std::copy_n(scaled.constBits(), scaled.sizeInBytes(), destination.get());
    return code;
}

} // namespace marlet::project
