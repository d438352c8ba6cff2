#include <marlet/platform/media/decoding/NoiseCheck.h>

#include <algorithm>
#include <cstring>

namespace kyh::media
{

namespace
{

/// A packet of AAC is so many bits after one another.
class PacketBits
{
public:
    explicit PacketBits(AVPacket &packet) : packet_(packet) {}

    void Put(unsigned int number, int count)
    {
        while (count-- > 0) {
            const unsigned int bit = number >> count & 1u;
            packet_.data[place_ / 8] |= static_cast<std::uint8_t>(bit << (7 - place_ % 8));
            ++place_;
        }
    }

private:
    AVPacket &packet_;
    std::size_t place_ = 0;
};

/// A channel of one band, which holds noise.
void PutNoise(PacketBits &bits)
{
    constexpr unsigned int kGain = 150;
    constexpr unsigned int kNoiseBook = 13;
    constexpr unsigned int kSameAsGain = 256;
    bits.Put(kGain, 8);
    bits.Put(0, 4); // a long window of the usual shape
    bits.Put(1, 6); // bands
    bits.Put(0, 1); // predicted from nothing
    bits.Put(kNoiseBook, 4);
    bits.Put(1, 5); // bands of that book
    bits.Put(kSameAsGain, 9);
    bits.Put(0, 3); // with none of the tools that would follow
}

PacketPtr NoisePacket(int channels)
{
    constexpr int kBytes = 16;
    constexpr unsigned int kPair = 1;
    constexpr unsigned int kEnd = 7;
    PacketPtr packet = NewPacket();
    if (av_new_packet(packet.get(), kBytes) < 0)
        throw std::bad_alloc();
    std::memset(packet->data, 0, kBytes);
    PacketBits bits(*packet);
    const bool isPair = channels == 2;
    bits.Put(isPair ? kPair : 0, 3);
    bits.Put(0, isPair ? 5 : 4); // the first of its kind, and each channel by itself
    PutNoise(bits);
    if (isPair)
        PutNoise(bits);
    bits.Put(kEnd, 3);
    return packet;
}

std::size_t BytesOfPlane(const AVFrame &frame)
{
    return static_cast<std::size_t>(frame.nb_samples) *
           static_cast<std::size_t>(av_get_bytes_per_sample(static_cast<AVSampleFormat>(frame.format)));
}

bool IsSilent(const AVFrame &frame)
{
    const std::uint8_t *plane = frame.extended_data[0];
    return std::all_of(plane, plane + BytesOfPlane(frame), [](std::uint8_t byte) { return byte == 0; });
}

} // namespace

std::unique_ptr<NoiseCheck> NoiseCheck::For(const AVCodecParameters &parameters)
{
    std::unique_ptr<NoiseCheck> check(new NoiseCheck(OpenDecoder(parameters, DecoderThreads::One)));
    return check->GetAhead(parameters.ch_layout.nb_channels) ? std::move(check) : nullptr;
}

/// False if the decoder takes no packet of this kind, as one does that its packets have yet to tell of.
bool NoiseCheck::GetAhead(int channels)
{
    const PacketPtr noise = NoisePacket(channels);
    feed_.Send(noise.get(), 0);
    const bool isAhead = feed_.Receive(*frame_) && !IsSilent(*frame_);
    feed_.Flush();
    return isAhead;
}

bool NoiseCheck::Agrees(const AVFrame &frame)
{
    if (!feed_.Receive(*frame_) || frame_->nb_samples != frame.nb_samples || frame_->format != frame.format ||
        frame_->ch_layout.nb_channels != frame.ch_layout.nb_channels ||
        !av_sample_fmt_is_planar(static_cast<AVSampleFormat>(frame.format)))
        return false;
    const std::size_t bytes = BytesOfPlane(frame);
    for (int channel = 0; channel < frame.ch_layout.nb_channels; ++channel)
        if (std::memcmp(frame_->extended_data[channel], frame.extended_data[channel], bytes) != 0)
            return false;
    return true;
}

} // namespace kyh::media
