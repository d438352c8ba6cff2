#include <marlet/platform/media/decoding/Decoder.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/decoding/FrameCache.h>

extern "C" {
#include <libavutil/imgutils.h>
}

#include <algorithm>
#include <cstddef>
#include <thread>

namespace kyh::media
{

namespace
{

constexpr unsigned int kMostThreads = 8;
/// Keeps a damaged header from taking all the memory there is. A frame may have up to 2 GB.
constexpr std::int64_t kMostPixels = std::int64_t{1} << 28;

/// Whether the threads that decode frames side by side hand on all that a frame needs of those before. For
/// this family they leave out tables of the quantiser, which shows after a jump.
bool CanThreadFrames(AVCodecID codec)
{
    return codec != AV_CODEC_ID_THEORA && codec != AV_CODEC_ID_VP3 && codec != AV_CODEC_ID_VP4;
}

void SetThreads(AVCodecContext &context, DecoderThreads threads)
{
    context.thread_count =
        threads == DecoderThreads::One
            ? 1
            : static_cast<int>(std::clamp(std::thread::hardware_concurrency(), 1u, kMostThreads));
    context.thread_type = threads == DecoderThreads::All && CanThreadFrames(context.codec_id)
                              ? FF_THREAD_FRAME | FF_THREAD_SLICE
                              : FF_THREAD_SLICE;
}

constexpr int kPlanes = 4;

/// Decoders read and write in blocks, beyond the end of a plane too.
constexpr std::size_t kPlanePadding = 128;

/// The bytes of a row, in as many as the decoder wants its rows aligned to. All planes are widened alike:
/// some decoders take it for granted that one is half of another.
bool FillRowBytes(AVPixelFormat format, int width, const int (&alignments)[AV_NUM_DATA_POINTERS],
                  int (&rowBytes)[kPlanes])
{
    for (bool isAligned = false; !isAligned; width += width & -width) {
        if (av_image_fill_linesizes(rowBytes, format, width) < 0)
            return false;
        isAligned = true;
        for (int i = 0; i < kPlanes; ++i)
            isAligned = isAligned && rowBytes[i] % alignments[i] == 0;
    }
    return true;
}

/// What libav does for a frame by itself, in one buffer of the cache.
int GetFrameBuffer(AVCodecContext *context, AVFrame *frame, int flags)
{
    if (context->codec_type != AVMEDIA_TYPE_VIDEO || !(context->codec->capabilities & AV_CODEC_CAP_DR1))
        return avcodec_default_get_buffer2(context, frame, flags);
    int width = frame->width;
    int height = frame->height;
    int alignments[AV_NUM_DATA_POINTERS] = {};
    avcodec_align_dimensions2(context, &width, &height, alignments);
    const auto format = static_cast<AVPixelFormat>(frame->format);
    int rowBytes[kPlanes] = {};
    std::ptrdiff_t strides[kPlanes] = {};
    std::size_t sizes[kPlanes] = {};
    if (!FillRowBytes(format, width, alignments, rowBytes))
        return AVERROR(EINVAL);
    std::copy(rowBytes, rowBytes + kPlanes, strides);
    if (const int result = av_image_fill_plane_sizes(sizes, format, height, strides); result < 0)
        return result;
    std::size_t bytes = 0;
    for (const std::size_t size : sizes)
        bytes += (size + 2 * kPlanePadding - 1) / kPlanePadding * kPlanePadding;
    try {
        frame->buf[0] = static_cast<FrameCache *>(context->opaque)->NewBuffer(bytes).release();
    } catch (...) {
    }
    if (!frame->buf[0])
        return AVERROR(ENOMEM);
    frame->extended_data = frame->data;
    std::uint8_t *plane = frame->buf[0]->data;
    for (int i = 0; i < kPlanes && sizes[i] > 0; ++i) {
        frame->data[i] = plane;
        frame->linesize[i] = rowBytes[i];
        plane += (sizes[i] + 2 * kPlanePadding - 1) / kPlanePadding * kPlanePadding;
    }
    return 0;
}

void DecodeInto(FrameCache &cache, AVCodecContext &context)
{
    context.opaque = &cache;
    context.get_buffer2 = GetFrameBuffer;
#if LIBAVCODEC_VERSION_MAJOR < 60
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wdeprecated-declarations"
    context.thread_safe_callbacks = 1;
#pragma GCC diagnostic pop
#endif
}

} // namespace

CodecPtr OpenDecoder(const AVCodecParameters &parameters, DecoderThreads threads, FrameCache *cache)
{
    const AVCodec *codec = avcodec_find_decoder(parameters.codec_id);
    if (!codec)
        throw MediaFailure{kUnknownFormat};
    CodecPtr context = Allocated(CodecPtr(avcodec_alloc_context3(codec)));
    RequireContent(avcodec_parameters_to_context(context.get(), &parameters));
    SetThreads(*context, threads);
    context->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    context->max_pixels = kMostPixels;
    if (cache)
        DecodeInto(*cache, *context);
    RequireContent(avcodec_open2(context.get(), codec, nullptr));
    return context;
}

void DecoderFeed::Flush()
{
    avcodec_flush_buffers(decoder_.get());
    isDraining_ = false;
    isAtEnd_ = false;
}

void DecoderFeed::Send(AVPacket *packet, int number)
{
    if (!packet) {
        isDraining_ = true;
        isAtEnd_ = avcodec_send_packet(decoder_.get(), nullptr) < 0;
        return;
    }
    // Times reorder nothing in a decoder. It only hands them on to what comes out, so they carry the number.
    packet->pts = number;
    packet->dts = number;
    avcodec_send_packet(decoder_.get(), packet);
}

bool DecoderFeed::Receive(AVFrame &frame)
{
    if (isAtEnd_)
        return false;
    int result = avcodec_receive_frame(decoder_.get(), &frame);
    // While it drains, a decoder goes on to the next frame after each that fails. It has at most one a thread
    // and those kept for reordering.
    constexpr int kMostFailures = 64;
    for (int i = 0; isDraining_ && result < 0 && result != AVERROR_EOF && i < kMostFailures; ++i)
        result = avcodec_receive_frame(decoder_.get(), &frame);
    isAtEnd_ = result == AVERROR_EOF || (isDraining_ && result < 0);
    return result >= 0;
}

} // namespace kyh::media
