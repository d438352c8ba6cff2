#include <marlet/platform/media/contents/FrameOrder.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/decoding/FrameReader.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace kyh::media
{

namespace
{

/// Beyond so many packets behind the last key frame, that the last frames decode is taken for granted.
constexpr int kLongestTail = 300;

void CountByDecoding(FrameReader &reader, FrameIndex &index)
{
    std::vector<int> packets;
    const FramePtr frame = NewFrame();
    reader.StartAt(0);
    while (reader.Next(*frame))
        if (const int packet = PacketOf(*frame); packet >= 0)
            packets.push_back(packet);
    index.SetFrames(std::move(packets));
}

int FirstDecoded(FrameReader &reader, const FrameIndex &index)
{
    const FramePtr decoded = NewFrame();
    reader.StartAt(0);
    while (reader.Next(*decoded))
        if (const int frame = index.FrameOf(PacketOf(*decoded)); frame >= 0)
            return frame;
    return -1;
}

int LastDecodedFrom(FrameReader &reader, const FrameIndex &index, int start)
{
    const FramePtr decoded = NewFrame();
    reader.StartAt(start == 0 ? 0 : index.Starts()[start].packet);
    int last = -1;
    while (reader.Next(*decoded))
        last = std::max(last, index.FrameOf(PacketOf(*decoded)));
    return last;
}

/// The last start leads to the end soonest. Where frames are missing then, they may only have needed more to
/// recover from, which an earlier start tells.
int LastDecoded(FrameReader &reader, const FrameIndex &index)
{
    const std::vector<FrameIndex::Start> &starts = index.Starts();
    const int packets = static_cast<int>(index.Packets().size());
    const auto earliest =
        std::find_if(starts.begin(), starts.end(), [packets](const FrameIndex::Start &start) {
            return packets - start.packet <= kLongestTail;
        });
    if (earliest == starts.end())
        return index.Count() - 1;
    int last = LastDecodedFrom(reader, index, static_cast<int>(starts.size()) - 1);
    if (last < index.Count() - 1)
        last = std::max(last, LastDecodedFrom(reader, index, static_cast<int>(earliest - starts.begin())));
    return last < 0 ? index.Count() - 1 : last;
}

void TrimEnds(FrameReader &reader, FrameIndex &index)
{
    const int last = LastDecoded(reader, index);
    const int first = FirstDecoded(reader, index);
    if (first < 0 || first > last)
        throw MediaFailure{kDamaged};
    index.Trim(first, last + 1);
}

} // namespace

void OrderFrames(const FileSourcePtr &source, int stream, FrameIndex &index)
{
    FrameReader reader(source, stream, index.Packets(), DecoderThreads::All);
    if (index.OrderByTimes())
        TrimEnds(reader, index);
    else
        CountByDecoding(reader, index);
    if (index.Count() == 0)
        throw MediaFailure{kDamaged};
}

} // namespace kyh::media
