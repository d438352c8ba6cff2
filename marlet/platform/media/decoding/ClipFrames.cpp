#include <marlet/platform/media/decoding/ClipFrames.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <utility>

namespace kyh::media
{

ClipFrames::ClipFrames(FileSourcePtr source, int stream, FrameIndex index, MediaResourcesPtr resources)
    : resources_(std::move(resources)), source_(std::move(source)), stream_(stream), index_(std::move(index))
{
}

FrameReader &ClipFrames::Reader()
{
    if (!reader_)
        reader_ = std::make_unique<FrameReader>(source_, stream_, index_.Packets(), DecoderThreads::All);
    return *reader_;
}

void ClipFrames::Close()
{
    reader_.reset();
    av_frame_unref(frame_.get());
    av_frame_unref(behind_.get());
    number_ = -1;
    behindNumber_ = -1;
}

void ClipFrames::StartAt(int start)
{
    Reader().StartAt(index_.Packets().empty() || start == 0 ? 0 : index_.Starts()[start].packet);
    start_ = start;
    number_ = -1;
    behindNumber_ = -1;
}

/// Decoding on is the shorter way unless a key frame lies between.
bool ClipFrames::CanReadOnTo(int number)
{
    return reader_ && number_ >= 0 && number > number_ &&
           index_.Starts()[index_.StartFor(number)].packet <= reader_->Position();
}

/// False if the frame does not come. The last one before it is kept then.
bool ClipFrames::ReadOnTo(int number)
{
    for (;;) {
        if (behindNumber_ < 0) {
            if (!Reader().Next(*behind_))
                return false;
            behindNumber_ = index_.FrameOf(PacketOf(*behind_));
        }
        if (behindNumber_ > number)
            return false;
        if (behindNumber_ > number_) {
            std::swap(frame_, behind_);
            number_ = behindNumber_;
        }
        behindNumber_ = -1;
        if (number_ == number)
            return true;
    }
}

void ClipFrames::FindFrame(int number)
{
    if (!CanReadOnTo(number))
        StartAt(index_.StartFor(number));
    while (!ReadOnTo(number)) {
        if (start_ == 0) {
            if (number == 0)
                throw MediaFailure{kDamaged};
            index_.SetMissing(number);
            return;
        }
        // A decoder may need more to recover from than a container takes for a key frame: it begins one
        // earlier, and at last where nothing can be missing.
        const int before = index_.StartFor(number) - 1;
        StartAt(start_ > before && before > 0 ? before : 0);
    }
}

const AVFrame &ClipFrames::Frame(int number)
{
    try {
        while (number_ != index_.Shown(number))
            FindFrame(index_.Shown(number));
    } catch (...) {
        Close();
        throw;
    }
    return *frame_;
}

} // namespace kyh::media
