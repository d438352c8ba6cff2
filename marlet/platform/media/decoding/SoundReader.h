#pragma once

#include <marlet/platform/media/contents/SoundIndex.h>
#include <marlet/platform/media/decoding/SoundDecoder.h>
#include <marlet/platform/media/decoding/StreamCache.h>

#include <cstdint>
#include <memory>
#include <optional>

namespace kyh::media
{

/// The samples of an audio stream. They are decoded in stretches, so that a sample is the same whatever was
/// asked for before: where a codec carries something on from packet to packet, decoding always begins at the
/// same place in front of a stretch. Not for several threads at once.
class SoundReader
{
public:
    SoundReader(FileSourcePtr source, int stream, SoundIndex index, MediaResourcesPtr resources);

    const SoundIndex &Index() const { return index_; }
    int BytesOfSample() const; ///< of one channel
    /// Samples that all lie inside. @throws MediaFailure
    void Read(std::int64_t start, int count, unsigned char *buffer);
    /// Lets go of the decoder and of all that is kept, until samples are asked for.
    void Close() { cache_.Clear(); }

private:
    /// How the samples of a codec depend on where decoding began.
    struct Dependence {
        int preroll;    ///< packets to decode in front, until they no longer do
        bool isCarried; ///< they always do, if only by a noise that is made up
    };

    static Dependence DependenceOf(AVCodecID codec);
    std::int64_t FrameBytes() const;
    std::unique_ptr<SoundDecoder> TakeDecoder();
    SoundStretch StretchAt(std::int64_t sample) const;
    bool FindStretch(SoundStretch &stretch, std::int64_t end);
    void Decode(SoundStretch &stretch, std::int64_t end);
    void Begin(SoundDecoder &decoder, const SoundStretch &stretch);

    FileSourcePtr source_;
    int stream_;
    SoundIndex index_;
    std::optional<Dependence> dependence_; ///< once a decoder was there
    StreamCache cache_;                    // goes first: its decoder reads the index
};

} // namespace kyh::media
