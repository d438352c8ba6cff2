#include <marlet/platform/media/ClipFrames.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <utility>

namespace kyh::media
{

namespace
{

/// Beyond so many packets behind the last key frame, that the last frames decode is taken for granted.
constexpr int kLongestTail = 300;

} // namespace

ClipFrames::ClipFrames(FileSourcePtr source, int stream, FrameIndex index)
    : source_(std::move(source)), stream_(stream), index_(std::move(index))
{
    if (index_.OrderByTimes())
        FindEnds();
    else
        CountByDecoding();
    if (Count() == 0)
        throw MediaFailure{kDamaged};
}

void ClipFrames::CountByDecoding()
{
    std::vector<int> packets;
    StartAt(0);
    while (Reader().Next(*behind_))
        if (const int packet = PacketOf(*behind_); packet >= 0)
            packets.push_back(packet);
    index_.SetFrames(std::move(packets));
    StartAt(0);
}

void ClipFrames::FindEnds()
{
    const int last = LastDecoded();
    const int first = FirstDecoded();
    if (first < 0 || first > last)
        throw MediaFailure{kDamaged};
    index_.Trim(first, last + 1);
    StartAt(0);
}

int ClipFrames::FirstDecoded()
{
    StartAt(0);
    while (Reader().Next(*behind_))
        if (const int frame = index_.FrameOf(PacketOf(*behind_)); frame >= 0)
            return frame;
    return -1;
}

/// The last start leads to the end soonest. Where frames are missing then, they may only have needed more to
/// recover from, which an earlier start tells.
int ClipFrames::LastDecoded()
{
    const std::vector<FrameIndex::Start> &starts = index_.Starts();
    const int packets = static_cast<int>(index_.Packets().size());
    const auto earliest =
        std::find_if(starts.begin(), starts.end(), [packets](const FrameIndex::Start &start) {
            return packets - start.packet <= kLongestTail;
        });
    if (earliest == starts.end())
        return Count() - 1;
    int last = LastDecodedFrom(static_cast<int>(starts.size()) - 1);
    if (last < Count() - 1)
        last = std::max(last, LastDecodedFrom(static_cast<int>(earliest - starts.begin())));
    return last < 0 ? Count() - 1 : last;
}

int ClipFrames::LastDecodedFrom(int start)
{
    StartAt(start);
    int last = -1;
    while (Reader().Next(*behind_))
        last = std::max(last, index_.FrameOf(PacketOf(*behind_)));
    return last;
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
