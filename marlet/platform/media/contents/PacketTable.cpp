#include <marlet/platform/media/contents/PacketTable.h>

#include <algorithm>

namespace kyh::media
{

namespace
{

const MovTrack *TrackOf(const std::vector<MovTrack> &tracks, const AVStream &stream)
{
    const auto isOfStream = [&stream](const MovTrack &track) {
        return static_cast<std::int64_t>(track.id) == stream.id;
    };
    const auto track = std::ranges::find_if(tracks, isOfStream);
    return std::ranges::count_if(tracks, isOfStream) == 1 ? &*track : nullptr;
}

bool AreSame(const PacketMark &first, const PacketMark &second)
{
    return first.position == second.position && first.size == second.size && first.pts == second.pts &&
           first.isKey == second.isKey;
}

/// Edits may leave samples out or repeat them, which only the sizes of all of them tell.
bool AreSamples(const PacketTable &table, const MovTrack &track)
{
    if (track.offsets.empty())
        return true;
    const auto hasSize = [](const ListedPacket &packet, std::uint32_t size) {
        return packet.mark.size >= 0 && static_cast<std::uint32_t>(packet.mark.size) == size;
    };
    return track.offsets.size() == table.size() && std::ranges::equal(table, track.sizes, hasSize);
}

/// From what the index has, which is when a packet is decoded, to when it is shown.
void SetTimes(PacketTable &table, const MovTrack &track, const PacketMark &first)
{
    if (track.offsets.empty())
        return;
    // Without a sign, since the times of a damaged file may be any.
    const auto shown = [&](std::size_t packet) {
        return static_cast<std::uint64_t>(table[packet].mark.dts) +
               static_cast<std::uint64_t>(std::int64_t{track.offsets[packet]});
    };
    const std::uint64_t shift = static_cast<std::uint64_t>(first.pts) - shown(0);
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i].mark.pts = static_cast<std::int64_t>(shown(i) + shift);
}

bool IsAsRead(const ListedPacket &listed, Demuxer &demuxer, int stream, AVPacket &packet)
{
    // Seeking takes a time for one of showing, and so leads some packets too far back.
    constexpr int kMostBefore = 32;
    if (!demuxer.SeekToPacket(stream, listed.mark.dts))
        return false;
    for (int i = 0; i < kMostBefore && demuxer.Read(packet); ++i)
        if (packet.stream_index == stream && packet.pos == listed.mark.position)
            return AreSame(listed.mark, MarkOf(packet)) &&
                   listed.isDiscarded == ((packet.flags & AV_PKT_FLAG_DISCARD) != 0);
    return false;
}

} // namespace

std::optional<PacketTable> ReadPacketTable(const FileSource &source, const std::vector<MovTrack> &tracks,
                                           Demuxer &demuxer, int stream, const PacketMark &first)
{
    AVStream &of = demuxer.Stream(stream);
    const MovTrack *track = TrackOf(tracks, of);
    const int count = avformat_index_get_entries_count(&of);
    if (!track || count == 0 || first.pts == AV_NOPTS_VALUE)
        return std::nullopt;
    PacketTable table;
    table.reserve(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        const AVIndexEntry &entry = *avformat_index_get_entry(&of, i);
        if (entry.pos < 0 || entry.size < 0 || entry.pos > source.Size() - entry.size)
            return std::nullopt;
        const bool isKey = (entry.flags & AVINDEX_KEYFRAME) != 0;
        table.push_back({{entry.pos, entry.timestamp, entry.timestamp, entry.size, isKey},
                         (entry.flags & AVINDEX_DISCARD_FRAME) != 0});
    }
    if (!AreSamples(table, *track))
        return std::nullopt;
    SetTimes(table, *track, first);
    return AreSame(table.front().mark, first) ? std::optional(std::move(table)) : std::nullopt;
}

bool IsTrue(const PacketTable &table, Demuxer &demuxer, int stream)
{
    constexpr std::size_t kPlaces = 6;
    demuxer.Select({stream});
    const PacketPtr packet = NewPacket();
    const std::size_t last = table.size() - 1;
    for (std::size_t i = 1; i <= kPlaces; ++i) {
        const std::size_t place = last * i / kPlaces;
        const auto key = std::find_if(table.begin() + static_cast<std::ptrdiff_t>(place), table.end(),
                                      [](const ListedPacket &entry) { return entry.mark.isKey; });
        if (!IsAsRead(table[place], demuxer, stream, *packet))
            return false;
        if (key != table.end() && !IsAsRead(*key, demuxer, stream, *packet))
            return false;
    }
    return true;
}

} // namespace kyh::media
