#include <marlet/platform/media/contents/FrameIndex.h>

#include <algorithm>
#include <numeric>
#include <utility>

namespace kyh::media
{

namespace
{

/// A packet that says nothing but that there is no new picture is not larger.
constexpr int kLargestEmptyPacket = 16;

/// A picture that only serves to predict others.
bool IsHiddenVp8(const AVPacket &packet)
{
    constexpr int kShowBit = 0x10;
    return packet.size > 0 && (packet.data[0] & kShowBit) == 0;
}

/// Each picture of an animation is drawn over the one before, whatever its packet says.
bool IsDrawnOver(AVCodecID codec)
{
    return codec == AV_CODEC_ID_GIF || codec == AV_CODEC_ID_APNG;
}

} // namespace

FrameIndex::FrameIndex(AVCodecID codec, std::vector<PacketMark> packets, std::vector<int> frames,
                       std::vector<Start> starts)
    : codec_(codec), packets_(std::move(packets)), frames_(std::move(frames)), starts_(std::move(starts))
{
    NumberFrames();
}

/// Whether a packet of that size may decode to another count of frames than one.
bool FrameIndex::IsOdd(int size) const
{
    return size <= (codec_ == AV_CODEC_ID_MPEG4 ? kLargestEmptyPacket : 0);
}

bool FrameIndex::IsOdd(const AVPacket &packet, const AVCodecParserContext *parser) const
{
    if (IsOdd(packet.size) || (codec_ == AV_CODEC_ID_VP8 && IsHiddenVp8(packet)))
        return true;
    return parser && (parser->picture_structure == AV_PICTURE_STRUCTURE_TOP_FIELD ||
                      parser->picture_structure == AV_PICTURE_STRUCTURE_BOTTOM_FIELD);
}

void FrameIndex::Add(const PacketMark &mark, bool isHidden, bool isOdd)
{
    packets_.push_back(mark);
    isHidden_.push_back(isHidden);
    hasOdd_ = hasOdd_ || isOdd;
    hasAllTimes_ = hasAllTimes_ && mark.pts != AV_NOPTS_VALUE;
}

void FrameIndex::Add(const AVPacket &packet, const AVCodecParserContext *parser)
{
    Add(MarkOf(packet), (packet.flags & AV_PKT_FLAG_DISCARD) != 0, IsOdd(packet, parser));
}

void FrameIndex::Add(const ListedPacket &packet)
{
    Add(packet.mark, packet.isDiscarded, IsOdd(packet.mark.size));
}

bool FrameIndex::OrderByTimes()
{
    if (hasOdd_ || !hasAllTimes_)
        return false;
    std::vector<int> order(packets_.size());
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [&](int a, int b) { return packets_[a].pts < packets_[b].pts; });
    frames_.clear();
    std::vector<int> framesBefore(packets_.size());
    for (const int packet : order) {
        framesBefore[packet] = Count();
        if (isHidden_[packet])
            continue;
        if (!frames_.empty() && packets_[frames_.back()].pts == packets_[packet].pts)
            return false;
        frames_.push_back(packet);
    }
    for (int packet = 0; packet < static_cast<int>(packets_.size()); ++packet)
        if (IsStart(packet) && framesBefore[packet] < Count())
            starts_.push_back({packet, framesBefore[packet]});
    NumberFrames();
    OrderStarts();
    return true;
}

bool FrameIndex::IsStart(int packet) const
{
    return packet == 0 || (packets_[packet].isKey && !IsDrawnOver(codec_));
}

void FrameIndex::SetFrames(std::vector<int> packets)
{
    frames_ = std::move(packets);
    NumberFrames();
    starts_.clear();
    for (int packet = 0; packet < static_cast<int>(packets_.size()); ++packet)
        if (IsStart(packet) && frameOfPacket_[packet] >= 0)
            starts_.push_back({packet, frameOfPacket_[packet]});
    OrderStarts();
}

void FrameIndex::NumberFrames()
{
    frameOfPacket_.assign(packets_.size(), -1);
    for (int frame = 0; frame < Count(); ++frame)
        frameOfPacket_[frames_[frame]] = frame;
}

void FrameIndex::OrderStarts()
{
    // The start of the file leads to all that come out at all.
    if (starts_.empty() || starts_.front().packet != 0)
        starts_.insert(starts_.begin(), {0, 0});
    starts_.front().frame = 0;
    // With key frames in an order of their own, the later in the file leads to less.
    for (std::size_t i = 1; i < starts_.size(); ++i)
        starts_[i].frame = std::max(starts_[i].frame, starts_[i - 1].frame);
}

bool FrameIndex::IsFirstSure() const
{
    return !frames_.empty() && packets_.front().isKey &&
           packets_[frames_.front()].pts >= packets_.front().pts;
}

void FrameIndex::TrimTo(int first)
{
    frames_.erase(frames_.begin(), frames_.begin() + first);
    for (Start &start : starts_)
        start.frame = std::max(start.frame - first, 0);
    NumberFrames();
    OrderStarts();
}

void FrameIndex::Tighten()
{
    packets_.shrink_to_fit();
    isHidden_ = {};
    hasOdd_ = false;
    hasAllTimes_ = true;
    frames_.shrink_to_fit();
    starts_.shrink_to_fit();
}

int FrameIndex::StartFor(int frame) const
{
    const auto behind = std::upper_bound(starts_.begin(), starts_.end(), frame,
                                         [](int number, const Start &start) { return number < start.frame; });
    return static_cast<int>(behind - starts_.begin()) - 1;
}

std::int64_t FrameIndex::Span() const
{
    if (frames_.empty())
        return 0;
    const std::int64_t first = packets_[frames_.front()].pts;
    const std::int64_t last = packets_[frames_.back()].pts;
    std::int64_t span = 0;
    const bool isKnown = first != AV_NOPTS_VALUE && last != AV_NOPTS_VALUE;
    return isKnown && !__builtin_sub_overflow(last, first, &span) ? std::max<std::int64_t>(span, 0) : 0;
}

} // namespace kyh::media
