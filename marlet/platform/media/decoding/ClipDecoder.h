#pragma once

#include <marlet/platform/media/contents/FrameIndex.h>
#include <marlet/platform/media/decoding/FrameCache.h>
#include <marlet/platform/media/decoding/FrameReader.h>
#include <marlet/platform/media/decoding/LiveDecoders.h>

namespace kyh::media
{

/// The frames of a clip by number, in the order in which they are shown, from a start of its index on. Not
/// for several threads at once.
class ClipDecoder final : public LiveDecoders::Decoder
{
public:
    static constexpr int kUnknown = -2;

    /// `index` and `cache` must outlive it. @throws MediaFailure
    ClipDecoder(FileSourcePtr source, int stream, const FrameIndex &index, FrameCache &cache);
    ~ClipDecoder() override { cache_.Discharge(charge_); }
    std::size_t Bytes() const override;
    std::size_t FrameBytes() const; ///< of each, about

    void StartAt(int start);
    int Start() const { return start_; } ///< its number in the index
    /// The frame that it came to last. Behind a start, the one before that start, or kUnknown where the
    /// frames that come first may be later ones.
    int Number() const { return number_; }
    /// A frame if it is the last that it came to, or null.
    const AVFrame *FrameOf(int number) const;
    /// Whether decoding on is the shorter way to a frame.
    bool LeadsTo(int number) const;

    /// The number of the frame that comes next. One behind `number` if none comes up to there.
    int NextUpTo(int number);
    /// Goes on to the frame that NextUpTo has found.
    void Advance();
    /// Whether what has come behind the start is what comes of a decode from the start of the file.
    bool IsInStep() const { return isInStep_; }

private:
    bool FindNext(int end);
    bool IsFirstRight() const;

    const FrameIndex &index_;
    FrameCache &cache_;
    FrameReader reader_;
    std::size_t charge_ = 0;
    int start_ = 0;
    bool isInStep_ = false;
    FramePtr frame_ = NewFrame();
    int number_ = kUnknown;
    FramePtr next_ = NewFrame();
    int nextNumber_ = kUnknown;
};

} // namespace kyh::media
