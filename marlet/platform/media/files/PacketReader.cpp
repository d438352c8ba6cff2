#include <marlet/platform/media/files/PacketReader.h>

#include <marlet/platform/media/MediaFailure.h>

#include <algorithm>
#include <utility>

namespace kyh::media
{

namespace
{

constexpr int kMostFailedSeeks = 3;
/// Where a container keeps its index for another stream, a place is up to so far off.
constexpr std::int64_t kMargins[] = {0, 5 * AV_TIME_BASE, 30 * AV_TIME_BASE};

bool IsKnown(std::int64_t time)
{
    return time != AV_NOPTS_VALUE;
}

/// The time to seek by. Decoding comes before showing.
std::int64_t TimeOf(const PacketMark &mark)
{
    if (!IsKnown(mark.dts) || !IsKnown(mark.pts))
        return IsKnown(mark.dts) ? mark.dts : mark.pts;
    return std::min(mark.dts, mark.pts);
}

/// Times of decoding are guessed anew after a seek, so they do not count.
bool IsSame(const PacketMark &mark, const PacketMark &seen)
{
    return mark.size == seen.size && mark.position == seen.position &&
           (mark.pts == seen.pts || !IsKnown(mark.pts) || !IsKnown(seen.pts));
}

bool IsBehind(const PacketMark &mark, const PacketMark &seen)
{
    if (mark.position >= 0 && seen.position >= 0 && mark.position != seen.position)
        return seen.position > mark.position;
    return IsKnown(mark.dts) && IsKnown(seen.dts) && seen.dts > mark.dts;
}

} // namespace

PacketMark MarkOf(const AVPacket &packet)
{
    return {packet.pos, packet.pts, packet.dts, packet.size, (packet.flags & AV_PKT_FLAG_KEY) != 0};
}

PacketReader::PacketReader(FileSourcePtr source, int stream, const std::vector<PacketMark> &marks)
    : source_(std::move(source)), stream_(stream), marks_(marks)
{
    Restart();
}

void PacketReader::Restart()
{
    demuxer_.reset();
    demuxer_ = std::make_unique<Demuxer>(source_);
    demuxer_->OpenStreams();
    if (demuxer_->IsStill() || stream_ >= static_cast<int>(demuxer_->Format().nb_streams))
        throw MediaFailure{kDamaged};
    demuxer_->Select({stream_});
    next_ = 0;
    isPacketWaiting_ = false;
    hasSought_ = false;
    isPlaceKnown_ = true;
}

bool PacketReader::ReadOfStream()
{
    while (demuxer_->Read(*packet_))
        if (packet_->stream_index == stream_)
            return true;
    return false;
}

void PacketReader::GoTo(int number)
{
    if (number == next_)
        return;
    if (!SeekTo(number) && (number < next_ || !isPlaceKnown_))
        Restart();
    while (next_ < number)
        Read();
}

bool PacketReader::SeekTo(int number)
{
    const PacketMark &mark = marks_[static_cast<std::size_t>(number)];
    if (failedSeeks_ == kMostFailedSeeks || !mark.isKey || !IsKnown(TimeOf(mark)))
        return false;
    hasSought_ = true;
    isPlaceKnown_ = false;
    if (demuxer_->Seek(stream_, TimeOf(mark)) && FindAfterSeek(number))
        return true;
    const std::int64_t time = av_rescale_q(TimeOf(mark), Stream().time_base, av_get_time_base_q());
    for (const std::int64_t margin : kMargins)
        if (demuxer_->Seek(-1, time - margin) && FindAfterSeek(number))
            return true;
    ++failedSeeks_;
    return false;
}

bool PacketReader::FindAfterSeek(int number)
{
    const PacketMark &mark = marks_[static_cast<std::size_t>(number)];
    while (ReadOfStream()) {
        const PacketMark seen = MarkOf(*packet_);
        if (IsSame(mark, seen)) {
            next_ = number;
            isPacketWaiting_ = true;
            isPlaceKnown_ = true;
            return true;
        }
        if (IsBehind(mark, seen))
            return false;
    }
    return false;
}

AVPacket *PacketReader::Read()
{
    if (next_ == Count())
        return nullptr;
    const PacketMark &mark = marks_[static_cast<std::size_t>(next_)];
    const bool isRead = std::exchange(isPacketWaiting_, false) || ReadOfStream();
    if (!isRead || packet_->size != mark.size || packet_->pos != mark.position) {
        if (!hasSought_)
            throw MediaFailure{kDamaged};
        // The container does not lead to the same packets by seeking.
        failedSeeks_ = kMostFailedSeeks;
        const int number = next_;
        Restart();
        GoTo(number);
        return Read();
    }
    ++next_;
    return packet_.get();
}

} // namespace kyh::media
