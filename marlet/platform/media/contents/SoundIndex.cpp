#include <marlet/platform/media/contents/SoundIndex.h>

#include <marlet/platform/media/MediaFailure.h>

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <algorithm>

namespace kyh::media
{

namespace
{

/// Samples to leave out at the beginning and at the end of what comes out.
struct Trim {
    int skip = 0;
    int cut = 0;

    Trim() = default;
    Trim(const std::uint8_t *bytes, std::size_t size)
    {
        constexpr std::size_t kSize = 10;
        if (!bytes || size < kSize)
            return;
        skip = static_cast<int>(std::min(AV_RL32(bytes), kMost));
        cut = static_cast<int>(std::min(AV_RL32(bytes + 4), kMost));
    }

private:
    static constexpr std::uint32_t kMost = 1u << 30;
};

Trim TrimOf(const AVPacket &packet)
{
    std::size_t size = 0;
    const std::uint8_t *bytes = av_packet_get_side_data(&packet, AV_PKT_DATA_SKIP_SAMPLES, &size);
    return {bytes, size};
}

Trim TrimOf(const AVFrame &frame)
{
    const AVFrameSideData *data = av_frame_get_side_data(&frame, AV_FRAME_DATA_SKIP_SAMPLES);
    return data ? Trim(data->data, data->size) : Trim();
}

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

} // namespace

SoundIndex::SoundIndex(AVCodecParameters &parameters)
    : parameters_(&parameters),
      decoder_(std::make_unique<DecoderFeed>(OpenDecoder(parameters, DecoderThreads::One))),
      rule_(HasEvenPackets(parameters.codec_id) ? Rule::Undecided : Rule::ByDecoding)
{
}

int SoundIndex::SizeOfPacket(int bytes) const
{
    return av_get_audio_frame_duration2(parameters_, bytes);
}

void SoundIndex::Add(AVPacket &packet)
{
    const int number = static_cast<int>(packets_.size());
    packets_.push_back(MarkOf(packet));
    contents_.push_back({count_, 0, 0});
    if (rule_ != Rule::BySize) {
        Decode(&packet);
        return;
    }
    const Trim trim = TrimOf(packet);
    Append(number, SizeOfPacket(packet.size), trim.skip, trim.cut, (packet.flags & AV_PKT_FLAG_DISCARD) != 0);
}

void SoundIndex::Decode(AVPacket *packet)
{
    decoder_->Send(packet, static_cast<int>(packets_.size()) - 1);
    while (decoder_->Receive(*frame_))
        TakeFrame();
    if (rule_ == Rule::BySize)
        decoder_.reset();
}

void SoundIndex::TakeFrame()
{
    const AVFrame &frame = *frame_;
    if (const int number = PacketOf(frame); number >= 0)
        lastNumber_ = number;
    if (format_ == AV_SAMPLE_FMT_NONE) {
        sampleRate_ = frame.sample_rate;
        channels_ = frame.ch_layout.nb_channels;
        format_ = static_cast<AVSampleFormat>(frame.format);
        profile_ = decoder_->Context().profile;
    }
    if (rule_ == Rule::Undecided)
        rule_ =
            frame.nb_samples == SizeOfPacket(packets_[lastNumber_].size) ? Rule::BySize : Rule::ByDecoding;
    const Trim trim = TrimOf(frame);
    Append(lastNumber_, frame.nb_samples, trim.skip, trim.cut, (frame.flags & AV_FRAME_FLAG_DISCARD) != 0);
}

void SoundIndex::Append(int number, int samples, int skip, int cut, bool isDiscarded)
{
    if (skip > 0)
        toSkip_ = skip;
    const int skipped = static_cast<int>(std::min<std::int64_t>(toSkip_, samples));
    toSkip_ -= skipped;
    const int before = isDiscarded ? samples : skipped;
    const int kept = std::max(samples - before - cut, 0);
    Content &content = contents_[number];
    if (content.length == 0) {
        content.first = count_;
        content.skipped += before;
    }
    content.length += kept;
    count_ += kept;
}

void SoundIndex::Finish()
{
    if (decoder_)
        Decode(nullptr);
    decoder_.reset();
    parameters_ = nullptr;
    if (channels_ <= 0 || sampleRate_ <= 0)
        throw MediaFailure{kDamaged};
    // A packet that nothing came of was noted before those that a decoder was still holding back.
    std::int64_t behind = 0;
    for (Content &content : contents_) {
        content.first = std::max(content.first, behind);
        behind = content.first + content.length;
    }
}

int SoundIndex::PacketAt(std::int64_t sample) const
{
    const auto behind =
        std::upper_bound(contents_.begin(), contents_.end(), sample,
                         [](std::int64_t number, const Content &content) { return number < content.first; });
    return std::max(static_cast<int>(behind - contents_.begin()) - 1, 0);
}

} // namespace kyh::media
