#include <marlet/platform/media/contents/VideoFacts.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/contents/NalUnits.h>
#include <marlet/platform/media/contents/PictureHeaders.h>

extern "C" {
#include <libavutil/pixdesc.h>
}

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

namespace kyh::media
{

namespace
{

constexpr int kWholeFrames = 1;
constexpr int kBottomFirst = 2;
constexpr int kTopFirst = 3;

using Matrix = std::int32_t[9];

/// By which side each axis of the picture comes out on. A matrix that turns by no multiple of a right angle
/// leaves the picture as it is.
Turn TurnOf(const Matrix &matrix)
{
    // x' = m[0] x + m[3] y, y' = m[1] x + m[4] y
    const auto isSmall = [&](int part, int beside) {
        return std::abs(std::int64_t{matrix[part]}) * 16 < std::abs(std::int64_t{matrix[beside]});
    };
    if (isSmall(1, 0) && isSmall(3, 4))
        return {false, matrix[0] < 0, matrix[4] < 0};
    if (isSmall(0, 1) && isSmall(4, 3))
        return {true, matrix[3] < 0, matrix[1] < 0};
    return {};
}

Turn TurnOf(const std::uint8_t *bytes)
{
    Matrix matrix;
    std::memcpy(matrix, bytes, sizeof matrix);
    return TurnOf(matrix);
}

Turn TurnOfFrame(const AVFrame &frame)
{
    const AVFrameSideData *data = av_frame_get_side_data(&frame, AV_FRAME_DATA_DISPLAYMATRIX);
    return data && data->size >= sizeof(Matrix) ? TurnOf(data->data) : Turn();
}

Turn TurnOfStream(const AVStream &stream, const AVFrame &first)
{
    std::size_t size = 0;
    const std::uint8_t *bytes = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    return bytes && size >= sizeof(Matrix) ? TurnOf(bytes) : TurnOfFrame(first);
}

AVRational AspectOf(AVFormatContext &format, AVStream &stream, const AVFrame &first)
{
    // The frame is only read.
    return av_guess_sample_aspect_ratio(&format, &stream, const_cast<AVFrame *>(&first));
}

double PixelAspect(AVRational aspect, const Turn &turn)
{
    if (aspect.num <= 0 || aspect.den <= 0)
        return 1;
    return turn.isTransposed ? av_q2d(av_inv_q(aspect)) : av_q2d(aspect);
}

int FieldOrderOfFrame(const AVFrame &frame)
{
    if (!frame.interlaced_frame)
        return kWholeFrames;
    return frame.top_field_first ? kTopFirst : kBottomFirst;
}

/// The second letter of libav's names is the field that is shown first.
int FieldOrder(AVFieldOrder order, const AVFrame &first)
{
    switch (order) {
    case AV_FIELD_TT:
    case AV_FIELD_BT:
        return kTopFirst;
    case AV_FIELD_BB:
    case AV_FIELD_TB:
        return kBottomFirst;
    case AV_FIELD_PROGRESSIVE:
        return kWholeFrames;
    default:
        return FieldOrderOfFrame(first);
    }
}

bool CanBeInterlaced(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_APNG:
    case AV_CODEC_ID_AV1:
    case AV_CODEC_ID_CINEPAK:
    case AV_CODEC_ID_FLV1:
    case AV_CODEC_ID_GIF:
    case AV_CODEC_ID_H263:
    case AV_CODEC_ID_MPEG1VIDEO:
    case AV_CODEC_ID_MSMPEG4V2:
    case AV_CODEC_ID_MSMPEG4V3:
    case AV_CODEC_ID_PNG:
    case AV_CODEC_ID_QTRLE:
    case AV_CODEC_ID_RAWVIDEO:
    case AV_CODEC_ID_THEORA:
    case AV_CODEC_ID_VP8:
    case AV_CODEC_ID_VP9:
    case AV_CODEC_ID_WMV1:
    case AV_CODEC_ID_WMV2:
        return false;
    default:
        return true;
    }
}

bool MayBeTurnedByPackets(AVCodecID codec)
{
    return codec == AV_CODEC_ID_H264 || codec == AV_CODEC_ID_HEVC;
}

/// A declared rate counts if it agrees with the times of the frames to within half a frame. Otherwise the
/// rate varies or the container has guessed, and the times tell the average.
double FrameRate(const AVStream &stream, const FrameIndex &index)
{
    constexpr double kHalfFrame = 0.5;
    const double span = static_cast<double>(index.Span()) * av_q2d(stream.time_base);
    const double intervals = index.Count() - 1;
    double declared = 0;
    for (const AVRational rate : {stream.avg_frame_rate, stream.r_frame_rate}) {
        if (rate.num <= 0 || rate.den <= 0)
            continue;
        if (span <= 0 || std::abs(intervals - span * av_q2d(rate)) <= kHalfFrame)
            return av_q2d(rate);
        declared = declared > 0 ? declared : av_q2d(rate);
    }
    return intervals > 0 && span > 0 ? intervals / span : declared;
}

VideoFacts FactsOfFrame(const AVFrame &frame)
{
    constexpr std::int64_t kBytesPerPixel = 4;
    const AVPixFmtDescriptor *format = av_pix_fmt_desc_get(static_cast<AVPixelFormat>(frame.format));
    const bool isShowable =
        format && frame.width > 0 && frame.height > 0 &&
        sws_isSupportedInput(static_cast<AVPixelFormat>(frame.format)) &&
        std::int64_t{frame.width} * frame.height * kBytesPerPixel <= std::numeric_limits<int>::max();
    if (!isShowable)
        throw MediaFailure{kUnknownFormat};
    VideoFacts facts;
    facts.width = frame.width;
    facts.height = frame.height;
    facts.hasAlpha = (format->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    return facts;
}

} // namespace

bool AreFactsKnown(const AVStream &stream, const AVPacket &packet)
{
    const AVCodecParameters &parameters = *stream.codecpar;
    if (parameters.format == AV_PIX_FMT_NONE || parameters.width <= 0 || parameters.height <= 0)
        return false;
    if (parameters.field_order == AV_FIELD_UNKNOWN && CanBeInterlaced(parameters.codec_id) &&
        !IsWholeFrame(parameters, packet))
        return false;
    return !MayBeTurnedByPackets(parameters.codec_id) || !HasOrientation(parameters, packet);
}

FramePtr DescribedFrame(const AVCodecParameters &parameters)
{
    FramePtr frame = NewFrame();
    frame->width = parameters.width;
    frame->height = parameters.height;
    frame->format = parameters.format;
    frame->sample_aspect_ratio = parameters.sample_aspect_ratio;
    return frame;
}

VideoFacts FactsOfClip(AVFormatContext &format, AVStream &stream, const FrameIndex &index,
                       const AVFrame &first)
{
    VideoFacts facts = FactsOfFrame(first);
    facts.turn = TurnOfStream(stream, first);
    facts.pixelAspect = PixelAspect(AspectOf(format, stream, first), facts.turn);
    facts.frameRate = FrameRate(stream, index);
    facts.frameCount = index.Count();
    facts.fieldOrder = FieldOrder(stream.codecpar->field_order, first);
    facts.codec = stream.codecpar->codec_id;
    facts.profile = stream.codecpar->profile;
    return facts;
}

VideoFacts FactsOfStills(AVCodecID codec, int profile, int count, double frameRate, const AVFrame &first)
{
    VideoFacts facts = FactsOfFrame(first);
    facts.turn = TurnOfFrame(first);
    facts.pixelAspect = PixelAspect(first.sample_aspect_ratio, facts.turn);
    facts.frameRate = std::isfinite(frameRate) && frameRate > 0 ? frameRate : 0;
    facts.frameCount = count;
    facts.fieldOrder = kWholeFrames;
    facts.isStill = true;
    facts.codec = codec;
    facts.profile = profile;
    return facts;
}

} // namespace kyh::media
