#include <marlet/platform/media/contents/PacketSamples.h>

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <algorithm>
#include <bit>
#include <cstdint>
#include <utility>

namespace kyh::media
{

namespace
{

constexpr int kAlacHeader = 36;

/// Whether all packets of the codec hold as many samples as their size says.
bool HasEvenPackets(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_AAC:
    case AV_CODEC_ID_AC3:
    case AV_CODEC_ID_MP2:
    case AV_CODEC_ID_MP3:
        return true;
    default:
        return codec >= AV_CODEC_ID_FIRST_AUDIO && codec < AV_CODEC_ID_ADPCM_IMA_QT;
    }
}

/// Only packets that are shorter than the others say how long they are.
int SamplesInAlac(const AVCodecParameters &parameters, const AVPacket &packet)
{
    constexpr int kPlace = 23; // in bits, behind the flag for it and some others
    if (packet.size < 8)
        return 0;
    const bool isShort = (packet.data[2] & 0x10) != 0;
    if (!isShort)
        return static_cast<int>(AV_RB32(parameters.extradata + 12));
    return static_cast<int>(AV_RB64(packet.data) >> (64 - kPlace - 32) & 0xFFFFFFFF);
}

int SamplesInFlac(const AVPacket &packet)
{
    constexpr int kLongestHeader = 16;
    if (packet.size < kLongestHeader)
        return 0;
    const int form = packet.data[2] >> 4;
    if (form == 1)
        return 192;
    if (form >= 2 && form <= 5)
        return 576 << (form - 2);
    if (form >= 8)
        return 256 << (form - 8);
    // It stands behind the number of the frame, whose first byte says how many follow.
    const int ones = std::countl_one(packet.data[4]);
    const std::uint8_t *place = packet.data + 4 + (ones == 0 ? 1 : ones);
    return form == 6 ? *place + 1 : form == 7 ? AV_RB16(place) + 1 : 0;
}

} // namespace

PacketSamples::PacketSamples(const AVCodecParameters &parameters)
    : parameters_(const_cast<AVCodecParameters *>(&parameters))
{
    if (parameters.codec_id == AV_CODEC_ID_VORBIS)
        vorbis_.reset(av_vorbis_parse_init(parameters.extradata, parameters.extradata_size));
    way_ = WayOf(parameters.codec_id);
}

PacketSamples::Way PacketSamples::WayOf(AVCodecID codec) const
{
    if (codec == AV_CODEC_ID_ALAC && parameters_->extradata_size >= kAlacHeader)
        return Way::Alac;
    if (codec == AV_CODEC_ID_FLAC)
        return Way::Flac;
    if (vorbis_)
        return Way::Vorbis;
    return HasEvenPackets(codec) ? Way::BySize : Way::Untold;
}

int PacketSamples::InSize(int bytes) const
{
    return av_get_audio_frame_duration2(parameters_, bytes);
}

int PacketSamples::In(const AVPacket &packet)
{
    switch (way_) {
    case Way::BySize:
        return InSize(packet.size);
    case Way::Alac:
        return SamplesInAlac(*parameters_, packet);
    case Way::Flac:
        return SamplesInFlac(packet);
    case Way::Vorbis: {
        // Each overlaps the one before.
        const int samples = av_vorbis_parse_frame(vorbis_.get(), packet.data, packet.size);
        return std::exchange(isFirst_, false) ? 0 : std::max(samples, 0);
    }
    default:
        return 0;
    }
}

} // namespace kyh::media
