#pragma once

#include <marlet/platform/media/decoding/Decoder.h>

#include <memory>

namespace kyh::media
{

/// Tells of a stream of AAC of the usual profile where its decoder makes up noise, which it carries on from
/// wherever decoding began: a second decoder is sent the same packets, but is ahead in its noise. What both
/// give alike depends on the packets alone.
class NoiseCheck
{
public:
    /// Null where it cannot tell. @throws MediaFailure
    static std::unique_ptr<NoiseCheck> For(const AVCodecParameters &parameters);

    /// The decoder to send all packets to, and to flush, like the first.
    DecoderFeed &Feed() { return feed_; }
    /// Whether the next frame is the same as what the first decoder gave.
    bool Agrees(const AVFrame &frame);

private:
    explicit NoiseCheck(CodecPtr decoder) : feed_(static_cast<CodecPtr &&>(decoder)) {}
    bool GetAhead(int channels);

    DecoderFeed feed_;
    FramePtr frame_ = NewFrame();
};

} // namespace kyh::media
