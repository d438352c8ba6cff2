#include <marlet/platform/media/contents/SoundCounter.h>

#include <marlet/platform/media/MediaFailure.h>

extern "C" {
#include <libavutil/intreadwrite.h>
}

#include <algorithm>
#include <utility>

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

} // namespace

SoundCounter::SoundCounter(AVCodecParameters &parameters, Decoding decoding)
    : told_(parameters),
      decoder_(std::make_unique<DecoderFeed>(OpenDecoder(parameters, DecoderThreads::One))),
      rule_(told_.AreTold() && decoding == Decoding::WhatItTakes ? Rule::Undecided : Rule::ByDecoding)
{
}

void SoundCounter::AddPacket(const PacketMark &mark)
{
    packets_.push_back(mark);
    contents_.push_back({count_, 0, 0});
}

void SoundCounter::Add(AVPacket &packet)
{
    AddPacket(MarkOf(packet));
    const std::optional<int> samples = told_.In(packet);
    if (rule_ != Rule::AsTold) {
        toldBefore_.push_back(samples);
        Decode(&packet);
        return;
    }
    const Trim trim = TrimOf(packet);
    AppendTold(samples, trim.skip, trim.cut, (packet.flags & AV_PKT_FLAG_DISCARD) != 0);
}

void SoundCounter::Add(const ListedPacket &packet)
{
    AddPacket(packet.mark);
    AppendTold(told_.InSize(packet.mark.size), 0, 0, packet.isDiscarded);
}

void SoundCounter::AppendTold(std::optional<int> samples, int skip, int cut, bool isDiscarded)
{
    hasUntold_ = hasUntold_ || !samples;
    Append(static_cast<int>(packets_.size()) - 1, samples.value_or(0), skip, cut, isDiscarded);
}

void SoundCounter::Decode(AVPacket *packet)
{
    decoder_->Send(packet, static_cast<int>(packets_.size()) - 1);
    while (decoder_->Receive(*frame_))
        TakeFrame();
    if (rule_ == Rule::Undecided && lastNumber_ >= 0)
        Decide();
    if (rule_ == Rule::AsTold)
        decoder_.reset();
}

void SoundCounter::TakeFrame()
{
    const AVFrame &frame = *frame_;
    if (const int number = PacketOf(frame); number >= 0 && number != lastNumber_) {
        lastNumber_ = number;
        lastDecoded_ = 0;
    }
    lastDecoded_ += frame.nb_samples;
    if (form_.format == AV_SAMPLE_FMT_NONE)
        form_ = {.sampleRate = frame.sample_rate,
                 .channels = frame.ch_layout.nb_channels,
                 .format = static_cast<AVSampleFormat>(frame.format),
                 .profile = decoder_->Context().profile};
    const Trim trim = TrimOf(frame);
    Append(std::max(lastNumber_, 0), frame.nb_samples, trim.skip, trim.cut,
           (frame.flags & AV_FRAME_FLAG_DISCARD) != 0);
}

/// By all that has come of a packet.
void SoundCounter::Decide()
{
    rule_ = lastDecoded_ == toldBefore_[lastNumber_] ? Rule::AsTold : Rule::ByDecoding;
}

void SoundCounter::Append(int number, int samples, int skip, int cut, bool isDiscarded)
{
    if (skip > 0)
        toSkip_ = skip;
    const int skipped = static_cast<int>(std::min<std::int64_t>(toSkip_, samples));
    toSkip_ -= skipped;
    const int before = isDiscarded ? samples : skipped;
    const int kept = std::max(samples - before - cut, 0);
    SoundIndex::Content &content = contents_[number];
    if (content.length == 0) {
        content.first = count_;
        content.skipped += before;
    }
    content.length += kept;
    count_ += kept;
}

SoundIndex SoundCounter::Finish()
{
    if (decoder_)
        Decode(nullptr);
    decoder_.reset();
    if (form_.channels <= 0 || form_.sampleRate <= 0)
        throw MediaFailure{kDamaged};
    // A packet that nothing came of was noted before those that a decoder was still holding back.
    std::int64_t behind = 0;
    for (SoundIndex::Content &content : contents_) {
        content.first = std::max(content.first, behind);
        behind = content.first + content.length;
    }
    return {std::move(packets_), std::move(contents_), form_};
}

} // namespace kyh::media
