#pragma once

#include <marlet/platform/media/files/Demuxer.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace kyh::media
{

/// What a packet is known by when it is read again.
struct PacketMark {
    std::int64_t position; ///< in the file, or -1
    std::int64_t pts;      ///< when it is shown, or AV_NOPTS_VALUE
    std::int64_t dts;      ///< when it is decoded, or AV_NOPTS_VALUE
    int size;
    bool isKey;

    bool operator==(const PacketMark &) const = default;
};

PacketMark MarkOf(const AVPacket &packet);

/// The packets of one stream by number, counted from the start of the file. A number means the same packet
/// however the reader came to it: after a seek the packet must be the one that was counted, and where it is
/// not found the packets before it are read over.
class PacketReader
{
public:
    /// `marks`, all the packets of the stream, must stay as long as the reader.
    PacketReader(FileSourcePtr source, int stream, const std::vector<PacketMark> &marks);

    int Count() const { return static_cast<int>(marks_.size()); }
    /// The number of the packet that Read gives next.
    int Position() const { return next_; }
    void GoTo(int number);
    /// The next packet, or null behind the last.
    /// @throws MediaFailure if the file is no longer what it was
    AVPacket *Read();
    AVStream &Stream() { return demuxer_->Stream(stream_); }

private:
    void Restart();
    bool SeekTo(int number);
    bool FindAfterSeek(int number);
    bool ReadOfStream();

    FileSourcePtr source_;
    int stream_;
    const std::vector<PacketMark> &marks_;
    std::unique_ptr<Demuxer> demuxer_;
    PacketPtr packet_ = NewPacket();
    int next_ = 0;
    bool isPacketWaiting_ = false; ///< the next packet was read already
    bool hasSought_ = false;       ///< since the file was opened
    bool isPlaceKnown_ = true;     ///< false once a seek has led nowhere
    int failedSeeks_ = 0;
};

} // namespace kyh::media
