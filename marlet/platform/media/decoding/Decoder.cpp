#include <marlet/platform/media/decoding/Decoder.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
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

} // namespace

CodecPtr OpenDecoder(const AVCodecParameters &parameters, DecoderThreads threads)
{
    const AVCodec *codec = avcodec_find_decoder(parameters.codec_id);
    if (!codec)
        throw MediaFailure{kUnknownFormat};
    CodecPtr context = Allocated(CodecPtr(avcodec_alloc_context3(codec)));
    RequireContent(avcodec_parameters_to_context(context.get(), &parameters));
    SetThreads(*context, threads);
    context->flags2 |= AV_CODEC_FLAG2_SKIP_MANUAL;
    context->max_pixels = kMostPixels;
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
