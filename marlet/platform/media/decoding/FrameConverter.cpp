#include <marlet/platform/media/decoding/FrameConverter.h>

#include <marlet/platform/media/MediaFailure.h>

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <cstddef>
#include <cstring>
#include <utility>

namespace kyh::media
{

namespace
{

/// Libswscale writes blocks of pixels, which may reach beyond the end of a row that is no multiple of them.
constexpr int kRowBlock = 64;

/// Which colours are meant where the file does not say: those of high definition above this size.
constexpr int kStandardWidth = 1024;
constexpr int kStandardHeight = 576;

int ColourSpaceOf(const AVFrame &frame)
{
    if (frame.colorspace != AVCOL_SPC_UNSPECIFIED && frame.colorspace != AVCOL_SPC_RESERVED)
        return frame.colorspace;
    return frame.width > kStandardWidth || frame.height > kStandardHeight ? AVCOL_SPC_BT709
                                                                          : AVCOL_SPC_SMPTE170M;
}

bool IsGrey(const AVFrame &frame)
{
    const AVPixFmtDescriptor *format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    return format && format->nb_components <= 2;
}

/// Some formats stand for the full range by their name, which libswscale deprecates. Pictures in grey have
/// it unless they say otherwise.
bool IsFullRange(const AVFrame &frame)
{
    if (IsGrey(frame))
        return frame.color_range != AVCOL_RANGE_MPEG;
    switch (frame.format) {
    case AV_PIX_FMT_YUVJ411P:
    case AV_PIX_FMT_YUVJ420P:
    case AV_PIX_FMT_YUVJ422P:
    case AV_PIX_FMT_YUVJ440P:
    case AV_PIX_FMT_YUVJ444P:
        return true;
    default:
        return frame.color_range == AVCOL_RANGE_JPEG;
    }
}

int BytesPerPixel(KyImageChannels channels)
{
    return channels == KyImageChannels::Four ? 4 : 3;
}

template <int kBytes>
void CopyColumns(const unsigned char *from, std::ptrdiff_t step, int count, unsigned char *to)
{
    for (int i = 0; i < count; ++i, from += step, to += kBytes)
        std::memcpy(to, from, kBytes);
}

} // namespace

Scalers::Form FrameConverter::FormOf(const AVFrame &frame, KyImageChannels channels) const
{
    return {.width = frame.width,
            .height = frame.height,
            .format = frame.format,
            .colourSpace = ColourSpaceOf(frame),
            .isFullRange = IsFullRange(frame),
            .outWidth = width_,
            .outHeight = height_,
            .channels = channels};
}

void FrameConverter::Scale(const AVFrame &frame, KyImageChannels channels, unsigned char *buffer,
                           int rowBytes) const
{
    const Scalers::Form form = FormOf(frame, channels);
    ScalerPtr scaler = scalers_.Take(form);
    unsigned char *planes[] = {buffer, nullptr, nullptr, nullptr};
    const int strides[] = {rowBytes, 0, 0, 0};
    if (sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides) < 0)
        throw MediaFailure{kDamaged};
    scalers_.Keep(form, std::move(scaler));
}

void FrameConverter::Convert(const AVFrame &frame, KyImageChannels channels, unsigned char *buffer) const
{
    const int rowBytes = width_ * BytesPerPixel(channels);
    if (turn_ == Turn() && rowBytes % kRowBlock == 0)
        return Scale(frame, channels, buffer, rowBytes);
    const int paddedBytes = (rowBytes + kRowBlock - 1) / kRowBlock * kRowBlock;
    const BufferPtr picture = Allocated(cache_.NewBuffer(static_cast<std::size_t>(paddedBytes) * height_));
    Scale(frame, channels, picture->data, paddedBytes);
    CopyTurned(picture->data, BytesPerPixel(channels), paddedBytes, buffer);
}

void FrameConverter::CopyTurned(const unsigned char *picture, int bytesPerPixel, int rowBytes,
                                unsigned char *buffer) const
{
    const int width = turn_.isTransposed ? height_ : width_;
    const int height = turn_.isTransposed ? width_ : height_;
    std::ptrdiff_t across = turn_.isTransposed ? rowBytes : bytesPerPixel;
    std::ptrdiff_t down = turn_.isTransposed ? bytesPerPixel : rowBytes;
    const unsigned char *corner = picture;
    if (turn_.isMirroredAcross) {
        corner += across * (width - 1);
        across = -across;
    }
    if (turn_.isMirroredDown) {
        corner += down * (height - 1);
        down = -down;
    }
    const std::size_t outBytes = static_cast<std::size_t>(width) * bytesPerPixel;
    for (int y = 0; y < height; ++y, corner += down, buffer += outBytes) {
        if (across == bytesPerPixel)
            std::memcpy(buffer, corner, outBytes);
        else if (bytesPerPixel == 4)
            CopyColumns<4>(corner, across, width, buffer);
        else
            CopyColumns<3>(corner, across, width, buffer);
    }
}

} // namespace kyh::media
