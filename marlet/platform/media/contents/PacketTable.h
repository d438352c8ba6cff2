#pragma once

#include <marlet/platform/media/contents/MovTracks.h>
#include <marlet/platform/media/files/Demuxer.h>
#include <marlet/platform/media/files/PacketReader.h>

#include <optional>
#include <vector>

namespace kyh::media
{

struct ListedPacket {
    PacketMark mark;
    bool isDiscarded; ///< only there to decode others
};

/// All packets of a stream as the index of their container has them, without reading any.
using PacketTable = std::vector<ListedPacket>;

/// The table of a stream of a QuickTime or MPEG-4 file, or nothing if the index may not say all. `first` is
/// the stream's first packet as it was read.
std::optional<PacketTable> ReadPacketTable(const FileSource &source, const std::vector<MovTrack> &tracks,
                                           Demuxer &demuxer, int stream, const PacketMark &first);

/// Whether packets that are read here and there are as the table says. The demuxer is left anywhere.
bool IsTrue(const PacketTable &table, Demuxer &demuxer, int stream);

} // namespace kyh::media
