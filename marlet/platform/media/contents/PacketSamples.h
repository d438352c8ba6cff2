#pragma once

#include <marlet/platform/media/LibavHandles.h>

extern "C" {
#include <libavcodec/vorbis_parser.h>
}

#include <memory>

namespace kyh::media
{

/// How many samples the packets of a stream hold, as they say without being decoded.
class PacketSamples
{
public:
    explicit PacketSamples(const AVCodecParameters &parameters);

    /// Whether packets say it at all. Their decoder must have the last word on the first.
    bool AreTold() const { return way_ != Way::Untold; }
    /// Whether the size of a packet is all that it takes.
    bool AreToldBySize() const { return way_ == Way::BySize; }
    /// Of a packet by its size alone.
    int InSize(int bytes) const;
    /// Of the next packet.
    int In(const AVPacket &packet);

private:
    enum class Way { Untold, BySize, Alac, Flac, Vorbis };

    Way WayOf(AVCodecID codec) const;

    AVCodecParameters *parameters_; ///< which libav does not change
    std::unique_ptr<AVVorbisParseContext, FreeByAddress<av_vorbis_parse_free>> vorbis_;
    Way way_;
    bool isFirst_ = true;
};

} // namespace kyh::media
