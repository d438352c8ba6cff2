#pragma once

#include <marlet/platform/media/decoding/Decoder.h>
#include <marlet/platform/media/files/PacketReader.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kyh::media
{

/// Which samples come of which packet of an audio stream. What a file adds in front and behind for its codec
/// is left out, as the packets say.
class SoundIndex
{
public:
    /// What a packet holds.
    struct Content {
        std::int64_t first; ///< the number of the first sample that counts
        int skipped;        ///< samples that come out before it
        int length;         ///< samples that count
    };

    /// `parameters` must stay until Finish.
    /// @throws MediaFailure if there is no decoder
    explicit SoundIndex(AVCodecParameters &parameters);

    /// Takes in the next packet of the file, whose times are lost.
    void Add(AVPacket &packet);
    /// Nothing is added behind. @throws MediaFailure if nothing decodes
    void Finish();

    const std::vector<PacketMark> &Packets() const { return packets_; }
    const Content &ContentOf(int packet) const { return contents_[packet]; }
    std::int64_t Count() const { return count_; }
    /// The last packet that begins at or before a sample.
    int PacketAt(std::int64_t sample) const;

    // As the first frame has them, which the header of the stream need not tell.
    int SampleRate() const { return sampleRate_; }
    int Channels() const { return channels_; }
    AVSampleFormat Format() const { return format_; }
    int Profile() const { return profile_; }

private:
    /// How many samples a packet holds is told by its size, or by decoding it.
    enum class Rule { BySize, ByDecoding, Undecided };

    void Decode(AVPacket *packet);
    void TakeFrame();
    int SizeOfPacket(int bytes) const;
    void Append(int number, int samples, int skip, int cut, bool isDiscarded);

    AVCodecParameters *parameters_;        ///< until Finish
    std::unique_ptr<DecoderFeed> decoder_; ///< until nothing more needs to be decoded
    FramePtr frame_ = NewFrame();
    Rule rule_;
    int lastNumber_ = 0; ///< of the packet that the last frame came of
    std::vector<PacketMark> packets_;
    std::vector<Content> contents_;
    std::int64_t toSkip_ = 0;
    std::int64_t count_ = 0;
    int sampleRate_ = 0;
    int channels_ = 0;
    AVSampleFormat format_ = AV_SAMPLE_FMT_NONE;
    int profile_ = FF_PROFILE_UNKNOWN;
};

} // namespace kyh::media
