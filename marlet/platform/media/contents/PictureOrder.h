#pragma once

#include <marlet/platform/media/LibavHandles.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace kyh::media
{

/// The order in which the pictures of a stream are shown, as their own headers tell it, for containers that
/// have no times for that.
class PictureOrder
{
public:
    explicit PictureOrder(const AVCodecParameters &parameters);

    /// Whether the pictures of a codec tell.
    static bool IsTold(AVCodecID codec);
    /// Takes in the next packet of the stream.
    void Add(const AVPacket &packet);
    /// The packets by when they are shown. Nothing if it takes a decoder to know.
    std::optional<std::vector<int>> Packets() const;

private:
    void AddNext(const AVPacket &packet);
    void AddByType(const AVPacket &packet);
    void AddByNumber(const AVPacket &packet);

    AVCodecID codec_;
    CodecPtr context_; ///< that the parser works with
    ParserPtr parser_;
    bool isNeeded_ = false;          ///< since a packet had no time
    std::vector<PacketPtr> waiting_; ///< until it is needed
    bool isKnown_ = true;
    std::vector<std::int64_t> places_; ///< of the packets; whatever is shown earlier has a lower one
    int references_ = 0;
    int reference_ = -1;       ///< the last packet that others are predicted from
    bool mayReorder_ = false;  ///< as the last header of the sequence says
    std::int64_t group_ = -1;  ///< from one reset of the pictures' numbers to the next
    std::int64_t highest_ = 0; ///< number in the group
};

} // namespace kyh::media
