#pragma once

#include <marlet/platform/media/contents/SoundIndex.h>
#include <marlet/platform/media/decoding/FrameReader.h>
#include <marlet/platform/media/decoding/LiveDecoders.h>
#include <marlet/platform/media/decoding/NoiseCheck.h>

#include <cstdint>
#include <memory>

namespace kyh::media
{

/// A piece of the samples of a stream, as they are handed out.
struct SoundStretch {
    std::int64_t number = -1;
    std::int64_t begin = 0; ///< by the numbers of samples in the stream
    std::int64_t end = 0;
    std::int64_t decodedTo = 0;  ///< the sample behind the last that is there
    FramePtr bytes = NewFrame(); ///< in its first buffer
};

/// What to decode in front of a packet so that what comes of it no longer depends on where decoding began:
/// packets that it overlaps with, and in front of these as many bytes as packets borrow of those before them.
struct Preroll {
    int packets = 0;
    int bytes = 0;
};

/// The samples of a stream from some place on. Not for several threads at once.
class SoundDecoder final : public LiveDecoders::Decoder
{
public:
    /// `index` must outlive it. @throws MediaFailure
    SoundDecoder(FileSourcePtr source, int stream, const SoundIndex &index);
    std::size_t Bytes() const override;

    AVCodecID Codec() const { return reader_.Context().codec_id; }
    /// Looks for noise from now on. False if it cannot.
    bool BeginToCheck();
    /// Whether all that came since the last start is known to be what a decode from the start of the file
    /// gives. Only for one that checks.
    bool IsSure() const { return isSure_; }
    void StartAt(std::int64_t sample, const Preroll &preroll);
    /// Whether what comes next is a sample, without a start.
    bool IsAt(std::int64_t sample) const { return from_ <= sample && sample <= to_; }

    /// The stretch that it decodes into. What was in front of where it begins is not there.
    SoundStretch &Stretch() { return stretch_; }
    /// Goes on in the stretch up to a sample. What does not decode is silent.
    void DecodeTo(std::int64_t end);

private:
    void Check();
    void PlaceFrame();
    void CopyFrame();

    const SoundIndex &index_;
    std::unique_ptr<NoiseCheck> check_;
    FrameReader reader_; // goes first: it sends to the check
    SoundStretch stretch_;
    FramePtr frame_ = NewFrame();
    bool isSure_ = true;
    int packet_ = -1; ///< that the last frame came of
    int offset_ = 0;  ///< samples that came of it
    // Of the last frame, by the numbers of samples in the stream: its first one, and those of it that count.
    std::int64_t first_ = 0;
    std::int64_t from_ = 0;
    std::int64_t to_ = -1;
};

} // namespace kyh::media
