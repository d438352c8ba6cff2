#include <marlet/platform/media/decoding/SoundDecoder.h>

#include <marlet/platform/media/decoding/SampleFormat.h>

#include <algorithm>
#include <utility>

namespace kyh::media
{

SoundDecoder::SoundDecoder(FileSourcePtr source, int stream, const SoundIndex &index)
    : index_(index), reader_(std::move(source), stream, index.Packets(), DecoderThreads::One)
{
}

std::size_t SoundDecoder::Bytes() const
{
    constexpr std::size_t kOfDecoder = std::size_t{1} << 20;
    const AVBufferRef *bytes = stretch_.bytes->buf[0];
    return (check_ ? 2 : 1) * kOfDecoder + (bytes ? bytes->size : 0);
}

bool SoundDecoder::BeginToCheck()
{
    check_ = NoiseCheck::For(reader_.Parameters());
    if (check_)
        reader_.Share(check_->Feed());
    return check_ != nullptr;
}

void SoundDecoder::StartAt(std::int64_t sample, const Preroll &preroll)
{
    // Of each packet, that much at most is not for others to borrow.
    constexpr int kHeaders = 38;
    int first = std::max(index_.PacketAt(sample) - preroll.packets, 0);
    for (int bytes = preroll.bytes; bytes > 0 && first > 0; --first)
        bytes -= std::max(index_.Packets()[static_cast<std::size_t>(first - 1)].size - kHeaders, 1);
    // Where the noise that it carries on is no matter, a decoder need not be new.
    if (check_)
        reader_.JumpTo(first);
    else
        reader_.StartAfreshAt(first);
    isSure_ = true;
    packet_ = check_ ? first - 1 : -1;
    offset_ = 0;
    from_ = 0;
    to_ = -1;
}

void SoundDecoder::DecodeTo(std::int64_t end)
{
    // The last frame may reach into a stretch that was begun behind it.
    CopyFrame();
    while (stretch_.decodedTo < end && reader_.Next(*frame_)) {
        if (check_)
            Check();
        PlaceFrame();
        CopyFrame();
    }
    stretch_.decodedTo = std::max(stretch_.decodedTo, end);
}

/// Behind a packet that does not decode, too, something of those before it is left.
void SoundDecoder::Check()
{
    isSure_ = isSure_ && PacketOf(*frame_) == packet_ + 1 && check_->Agrees(*frame_);
}

void SoundDecoder::PlaceFrame()
{
    if (const int packet = PacketOf(*frame_); packet >= 0 && packet != packet_) {
        packet_ = packet;
        offset_ = 0;
    }
    if (packet_ < 0)
        return;
    const SoundIndex::Content &content = index_.ContentOf(packet_);
    first_ = content.first + offset_ - content.skipped;
    from_ = std::max(first_, content.first);
    to_ = std::min({first_ + frame_->nb_samples, content.first + content.length, index_.Count()});
    offset_ += frame_->nb_samples;
}

void SoundDecoder::CopyFrame()
{
    const std::int64_t begin = std::max(from_, stretch_.begin);
    const std::int64_t end = std::min(to_, stretch_.end);
    if (begin >= end || end <= stretch_.decodedTo)
        return;
    const int bytesPerSample = BytesPerSample(index_.Format());
    const std::int64_t place = (begin - stretch_.begin) * index_.Channels() * bytesPerSample;
    CopySamples(*frame_, static_cast<int>(begin - first_), static_cast<int>(end - begin), index_.Channels(),
                bytesPerSample, stretch_.bytes->buf[0]->data + place);
    stretch_.decodedTo = end;
}

} // namespace kyh::media
