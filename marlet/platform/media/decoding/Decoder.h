#pragma once

#include <marlet/platform/media/LibavHandles.h>

#include <cstdint>

namespace kyh::media
{

/// How many threads a decoder may use beside the caller's.
enum class DecoderThreads { One, Slices, All };

class FrameCache;

/// Opens the decoder of a stream. Sound is not trimmed, since that depends on where decoding began. Pictures
/// are decoded into memory of the cache, if there is one, which must outlive them.
/// @throws MediaFailure
CodecPtr OpenDecoder(const AVCodecParameters &parameters, DecoderThreads threads,
                     FrameCache *cache = nullptr);

/// Feeds a decoder. Packets that it refuses are passed over: what they hold is missing from what comes out.
class DecoderFeed
{
public:
    explicit DecoderFeed(CodecPtr decoder) : decoder_(static_cast<CodecPtr &&>(decoder)) {}

    const AVCodecContext &Context() const { return *decoder_; }
    /// Forgets what was sent.
    void Flush();
    /// Hands over a packet by its number, or the end as null.
    void Send(AVPacket *packet, int number);
    /// Takes a frame that is ready. Without one, the decoder wants the next packet or has come to its end.
    bool Receive(AVFrame &frame);
    bool IsAtEnd() const { return isAtEnd_; }

private:
    CodecPtr decoder_;
    bool isDraining_ = false;
    bool isAtEnd_ = false;
};

/// The number of the packet that a frame came out of, or -1 if the decoder lost it.
inline int PacketOf(const AVFrame &frame)
{
    const std::int64_t number = frame.pts == AV_NOPTS_VALUE ? frame.pkt_dts : frame.pts;
    return number == AV_NOPTS_VALUE ? -1 : static_cast<int>(number);
}

} // namespace kyh::media
