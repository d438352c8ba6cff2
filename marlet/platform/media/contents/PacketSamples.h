#pragma once

#include <marlet/platform/media/LibavHandles.h>

extern "C" {
#include <libavcodec/vorbis_parser.h>
}

#include <cstdint>
#include <memory>
#include <optional>

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
    bool AreToldBySize() const { return way_ == Way::BySize || way_ == Way::ByBlocks; }
    /// Of a packet by its size alone. Nothing if that one does not tell.
    std::optional<int> InSize(int bytes) const;
    /// Of the next packet. Nothing if that one does not tell.
    std::optional<int> In(const AVPacket &packet);

private:
    enum class Way {
        Untold,
        BySize,   ///< of any packet
        ByBlocks, ///< of those that hold nothing but whole blocks
        Alac,
        Amr,
        Dts,
        Eac3,
        Flac,
        Opus,
        Tta,
        Vorbis,
        WavPack
    };

    Way WayOf(AVCodecID codec) const;
    int InTta();

    AVCodecParameters *parameters_; ///< which libav does not change
    std::unique_ptr<AVVorbisParseContext, FreeByAddress<av_vorbis_parse_free>> vorbis_;
    Way way_;
    bool isFirst_ = true;
    std::int64_t left_ = 0; ///< samples of Tta in the packets that follow
};

} // namespace kyh::media
