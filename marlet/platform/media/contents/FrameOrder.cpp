#include <marlet/platform/media/contents/FrameOrder.h>

#include <marlet/platform/media/MediaFailure.h>
#include <marlet/platform/media/decoding/FrameReader.h>

#include <utility>
#include <vector>

namespace kyh::media
{

namespace
{

FramePtr CountByDecoding(const FileSourcePtr &source, int stream, FrameIndex &index)
{
    FrameReader reader(source, stream, index.Packets(), DecoderThreads::All);
    std::vector<int> packets;
    FramePtr first;
    FramePtr frame = NewFrame();
    reader.StartAt(0);
    while (reader.Next(*frame)) {
        const int packet = PacketOf(*frame);
        if (packet < 0)
            continue;
        packets.push_back(packet);
        if (!first)
            first = std::exchange(frame, NewFrame());
    }
    index.SetFrames(std::move(packets));
    return first;
}

bool OrderByHeaders(const PictureOrder *order, FrameIndex &index)
{
    if (!order || !index.HasFrameInEach())
        return false;
    auto packets = order->Packets();
    if (packets)
        index.SetFrames(std::move(*packets));
    return packets.has_value();
}

} // namespace

FramePtr TrimToFirst(const FileSourcePtr &source, int stream, FrameIndex &index)
{
    FrameReader reader(source, stream, index.Packets(), DecoderThreads::One);
    FramePtr decoded = NewFrame();
    reader.StartAt(0);
    while (reader.Next(*decoded))
        if (const int frame = index.FrameOf(PacketOf(*decoded)); frame >= 0) {
            index.TrimTo(frame);
            return decoded;
        }
    throw MediaFailure{kDamaged};
}

FramePtr OrderFrames(const FileSourcePtr &source, int stream, const PictureOrder *order, FrameIndex &index)
{
    FramePtr first;
    if (index.OrderByTimes()) {
        if (!index.IsFirstSure())
            first = TrimToFirst(source, stream, index);
    } else if (!OrderByHeaders(order, index)) {
        first = CountByDecoding(source, stream, index);
    }
    if (index.Count() == 0)
        throw MediaFailure{kDamaged};
    return first;
}

FramePtr DecodeFirst(const AVCodecParameters &parameters, AVPacket &packet)
{
    DecoderFeed feed(OpenDecoder(parameters, DecoderThreads::One));
    FramePtr frame = NewFrame();
    feed.Send(&packet, 0);
    if (!feed.Receive(*frame))
        feed.Send(nullptr, 0);
    return frame->width > 0 || feed.Receive(*frame) ? std::move(frame) : nullptr;
}

} // namespace kyh::media
