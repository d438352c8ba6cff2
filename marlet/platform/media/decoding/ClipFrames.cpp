#include <marlet/platform/media/decoding/ClipFrames.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <utility>

namespace kyh::media
{

namespace
{

/// Frames to decode at a time at most for one who goes backwards, where groups are shorter.
constexpr int kMostStepsBack = 16;

} // namespace

ClipFrames::ClipFrames(FileSourcePtr source, int stream, FrameIndex index, MediaResourcesPtr resources)
    : source_(std::move(source)),
      stream_(stream),
      index_(std::move(index)),
      isMissing_(static_cast<std::size_t>(index_.Count())),
      isBadStart_(index_.Starts().size()),
      cache_(std::move(resources))
{
}

/// The frame that is seen as a number: one that does not come is stood in for by the one before.
int ClipFrames::Shown(int number) const
{
    while (number >= 0 && isMissing_[number])
        --number;
    if (number < 0)
        throw MediaFailure{kDamaged};
    return number;
}

void ClipFrames::SetMissing(int first, int end)
{
    std::fill(isMissing_.begin() + first, isMissing_.begin() + end, true);
}

/// One who goes backwards will want the frames before as well.
void ClipFrames::CountStepsBack(int number)
{
    if (number == asked_ - 1)
        ++stepsBack_;
    else if (number != asked_)
        stepsBack_ = 0;
    asked_ = number;
}

/// More of what is decoded on the way to a frame would push out what others have in the cache, and they in
/// turn this, when several are read backwards at once.
int ClipFrames::FramesToKeep(const ClipDecoder &decoder) const
{
    const std::size_t frames = share_ / std::max<std::size_t>(decoder.FrameBytes(), 1);
    return static_cast<int>(std::min<std::size_t>(frames, index_.Count()));
}

/// The last start that leads to a frame, and to those that will be wanted with it.
int ClipFrames::StartFor(int number, const ClipDecoder &decoder) const
{
    const int back = std::min({stepsBack_, kMostStepsBack, FramesToKeep(decoder) / 2, number});
    return GoodStart(index_.StartFor(number - back));
}

int ClipFrames::GoodStart(int start) const
{
    while (start > 0 && isBadStart_[start])
        --start;
    return start;
}

/// Reads on to a frame. False if it turns out to be missing, or where the start does not lead to it.
bool ClipFrames::ReadOnTo(ClipDecoder &decoder, int number)
{
    const int firstToKeep = number - FramesToKeep(decoder);
    while (decoder.Number() < number) {
        const int next = decoder.NextUpTo(number);
        if (!decoder.IsInStep())
            return false;
        if (decoder.Number() != ClipDecoder::kUnknown)
            SetMissing(decoder.Number() + 1, next);
        if (next > number)
            return false;
        decoder.Advance();
        if (next > firstToKeep)
            cache_.Put(FrameCache::Kind::Frame, next, *decoder.FrameOf(next));
    }
    return true;
}

/// Where nothing has come as it should, decoding begins earlier, at last at the start of the file.
bool ClipFrames::Find(ClipDecoder &decoder, int number)
{
    if (decoder.FrameOf(number))
        return true;
    if (!decoder.LeadsTo(number))
        decoder.StartAt(StartFor(number, decoder));
    for (int back = 1; !ReadOnTo(decoder, number); back *= 2) {
        if (isMissing_[number])
            return false;
        isBadStart_[decoder.Start()] = !decoder.IsInStep();
        decoder.StartAt(GoodStart(std::max(decoder.Start() - back, 0)));
    }
    return true;
}

bool ClipFrames::Decode(int number, AVFrame &frame)
{
    auto decoder = cache_.TakeDecoder<ClipDecoder>();
    if (!decoder)
        decoder = std::make_unique<ClipDecoder>(source_, stream_, index_, cache_.Frames());
    const bool isFound = Find(*decoder, number);
    if (isFound && av_frame_ref(&frame, decoder->FrameOf(number)) < 0)
        throw std::bad_alloc();
    cache_.KeepDecoder(std::move(decoder));
    return isFound;
}

FramePtr ClipFrames::Frame(int number)
{
    CountStepsBack(number);
    share_ = cache_.Share();
    FramePtr frame = NewFrame();
    for (;;) {
        const int shown = Shown(number);
        if (cache_.Find(FrameCache::Kind::Frame, shown, *frame) || Decode(shown, *frame))
            return frame;
    }
}

} // namespace kyh::media
