#include <marlet/platform/media/contents/PacketSamples.h>

#include <marlet/platform/media/contents/HeaderBits.h>

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <algorithm>
#include <bit>
#include <cstdint>
#include <iterator>
#include <utility>

namespace kyh::media
{

namespace
{

constexpr int kAlacHeader = 36;
constexpr int kTtaHeader = 22;

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

/// Codecs whose packets are made of blocks, each with as many samples.
bool HasBlocks(AVCodecID codec)
{
    switch (codec) {
    case AV_CODEC_ID_G723_1:
    case AV_CODEC_ID_GSM:
    case AV_CODEC_ID_GSM_MS:
        return true;
    default:
        return codec >= AV_CODEC_ID_ADPCM_IMA_QT && codec < AV_CODEC_ID_AMR_NB;
    }
}

/// The codec of some telephones, whose frames say how long they are. Pauses take a decoder.
std::optional<int> SamplesInAmr(const AVPacket &packet)
{
    constexpr int kSamples = 160;
    constexpr int kBytes[] = {13, 14, 16, 18, 20, 21, 27, 32};
    int frames = 0;
    int place = 0;
    for (; place < packet.size; ++frames) {
        const unsigned int mode = packet.data[place] >> 3 & 15u;
        if (mode >= std::size(kBytes))
            return std::nullopt;
        place += kBytes[mode];
    }
    return place == packet.size ? std::optional(frames * kSamples) : std::nullopt;
}

std::optional<int> SamplesInDts(const AVPacket &packet)
{
    constexpr std::uint32_t kCore = 0x7FFE8001;
    constexpr unsigned int kWhole = 63; // a frame that is not the last, with nothing missing
    constexpr int kSamples = 32;
    if (packet.size < 8 || AV_RB32(packet.data) != kCore)
        return std::nullopt;
    HeaderBits bits(BytesOf(packet).subspan(4));
    if (bits.Take(6) != kWhole)
        return std::nullopt;
    bits.Pass(1);
    return static_cast<int>(bits.Take(7) + 1) * kSamples;
}

/// Several frames may follow each other, and some belong to those before them.
std::optional<int> SamplesInEac3(const AVPacket &packet)
{
    constexpr int kBlocks[] = {1, 2, 3, 6};
    constexpr int kSamples = 256;
    constexpr unsigned int kDependent = 1;
    constexpr unsigned int kLeastVersion = 11;
    int blocks = 0;
    Bytes left = BytesOf(packet);
    while (left.size() >= 6) {
        HeaderBits bits(left);
        const bool isFrame = bits.Take(16) == 0x0B77;
        const unsigned int type = bits.Take(2);
        const unsigned int stream = bits.Take(3);
        const std::size_t size = 2 * (std::size_t{bits.Take(11)} + 1);
        const unsigned int rate = bits.Take(2);
        const unsigned int count = rate == 3 ? (bits.Pass(2), 3) : bits.Take(2);
        bits.Pass(4);
        if (!isFrame || bits.Take(5) < kLeastVersion || size > left.size())
            return std::nullopt;
        if (type != kDependent && stream == 0)
            blocks += kBlocks[count];
        left = left.subspan(size);
    }
    return left.empty() ? std::optional(blocks * kSamples) : std::nullopt;
}

/// What was made for speech comes out of a decoder late, which only it knows.
std::optional<int> SamplesInOpus(const AVPacket &packet)
{
    constexpr int kFirstForMusic = 16;
    constexpr int kShortest = 120;
    if (packet.size < 2 || packet.data[0] >> 3 < kFirstForMusic)
        return std::nullopt;
    const int kind = packet.data[0] & 3;
    const int frames = kind == 0 ? 1 : kind < 3 ? 2 : packet.data[1] & 63;
    return frames * (kShortest << (packet.data[0] >> 3 & 3));
}

std::optional<int> SamplesInWavPack(const AVPacket &packet)
{
    constexpr int kMost = 1 << 20;
    if (packet.size < 32 || AV_RB32(packet.data) != AV_RB32("wvpk"))
        return std::nullopt;
    const std::uint32_t samples = AV_RL32(packet.data + 20);
    return samples > 0 && samples <= kMost ? std::optional(static_cast<int>(samples)) : std::nullopt;
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
    if (way_ == Way::Tta)
        left_ = AV_RL32(parameters.extradata + 14);
}

PacketSamples::Way PacketSamples::WayOf(AVCodecID codec) const
{
    if (codec == AV_CODEC_ID_ALAC && parameters_->extradata_size >= kAlacHeader)
        return Way::Alac;
    if (codec == AV_CODEC_ID_TTA && parameters_->extradata_size >= kTtaHeader)
        return Way::Tta;
    if (vorbis_)
        return Way::Vorbis;
    if (HasBlocks(codec))
        return Way::ByBlocks;
    switch (codec) {
    case AV_CODEC_ID_AMR_NB:
        return Way::Amr;
    case AV_CODEC_ID_DTS:
        return Way::Dts;
    case AV_CODEC_ID_EAC3:
        return Way::Eac3;
    case AV_CODEC_ID_FLAC:
        return Way::Flac;
    case AV_CODEC_ID_OPUS:
        return Way::Opus;
    case AV_CODEC_ID_WAVPACK:
        return Way::WavPack;
    default:
        return HasEvenPackets(codec) ? Way::BySize : Way::Untold;
    }
}

std::optional<int> PacketSamples::InSize(int bytes) const
{
    const int block = parameters_->block_align;
    if (way_ == Way::BySize || block <= 1)
        return av_get_audio_frame_duration2(parameters_, bytes);
    if (bytes % block != 0)
        return std::nullopt;
    return bytes / block * av_get_audio_frame_duration2(parameters_, block);
}

/// All frames but the last have the same length.
int PacketSamples::InTta()
{
    const int whole = static_cast<int>(std::int64_t{parameters_->sample_rate} * 256 / 245);
    const auto samples = static_cast<int>(std::clamp<std::int64_t>(left_, 0, whole));
    left_ -= samples;
    return samples;
}

std::optional<int> PacketSamples::In(const AVPacket &packet)
{
    switch (way_) {
    case Way::BySize:
    case Way::ByBlocks:
        return InSize(packet.size);
    case Way::Amr:
        return SamplesInAmr(packet);
    case Way::Dts:
        return SamplesInDts(packet);
    case Way::Eac3:
        return SamplesInEac3(packet);
    case Way::Opus:
        return SamplesInOpus(packet);
    case Way::Tta:
        return InTta();
    case Way::WavPack:
        return SamplesInWavPack(packet);
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
