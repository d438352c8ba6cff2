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
    /// How samples depend on where decoding began.
    enum class Dependence {
        Over,   ///< on no more than what the preroll covers
        ToSee,  ///< the same, if there is no noise that is made up, for which is looked
        Carried ///< always, if only by a noise
    };
    struct Kind {
        Dependence dependence;
        Preroll preroll;
    };

    static const Kind kCarried;

    static Kind KindOf(AVCodecID codec, int profile);
    bool IsCarried() const { return kind_->dependence == Dependence::Carried; }
    std::int64_t FrameBytes() const;
    std::unique_ptr<SoundDecoder> TakeDecoder();
    SoundStretch StretchAt(std::int64_t sample) const;
    bool FindStretch(SoundStretch &stretch, std::int64_t end);
    bool Decode(SoundStretch &stretch, std::int64_t end);
    void CarryOn();
    void Begin(SoundDecoder &decoder, const SoundStretch &stretch);

    FileSourcePtr source_;
    int stream_;
    SoundIndex index_;
    std::optional<Kind> kind_; ///< once a decoder was there
    StreamCache cache_;        // goes first: its decoder reads the index
};

} // namespace kyh::media
