#pragma once

#include <marlet/platform/media/LibavHandles.h>
#include <marlet/platform/media/files/PacketReader.h>

#include <cstdint>
#include <vector>

namespace kyh::media
{

/// How the samples of an audio stream come out of its decoder, which the header of the stream need not tell.
struct SoundForm {
    int sampleRate = 0;
    int channels = 0;
    AVSampleFormat format = AV_SAMPLE_FMT_NONE;
    int profile = FF_PROFILE_UNKNOWN;

    bool operator==(const SoundForm &) const = default;
};

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

        bool operator==(const Content &) const = default;
    };

    /// One of the contents for each of the packets.
    SoundIndex(std::vector<PacketMark> packets, std::vector<Content> contents, const SoundForm &form);

    const std::vector<PacketMark> &Packets() const { return packets_; }
    const std::vector<Content> &Contents() const { return contents_; }
    const Content &ContentOf(int packet) const { return contents_[packet]; }
    std::int64_t Count() const
    {
        return contents_.empty() ? 0 : contents_.back().first + contents_.back().length;
    }
    /// The last packet that begins at or before a sample.
    int PacketAt(std::int64_t sample) const;

    const SoundForm &Form() const { return form_; }
    int SampleRate() const { return form_.sampleRate; }
    int Channels() const { return form_.channels; }
    AVSampleFormat Format() const { return form_.format; }
    int Profile() const { return form_.profile; }

    bool operator==(const SoundIndex &) const = default;

private:
    std::vector<PacketMark> packets_;
    std::vector<Content> contents_;
    SoundForm form_;
};

} // namespace kyh::media
