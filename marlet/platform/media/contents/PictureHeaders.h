#pragma once

#include <marlet/platform/media/contents/HeaderBits.h>

#include <optional>

namespace kyh::media
{

/// How the packets of a stream are related, as its own headers say.
struct SequenceHeader {
    bool isProgressive = false;
    bool mayReorder = false; ///< pictures may be shown in another order than they are decoded in
};

/// A picture of MPEG-1, 2 or 4.
struct PictureHeader {
    bool isReference; ///< otherwise it is shown when it is decoded
};

/// The last header of a sequence of MPEG-2 or 4 among some units.
std::optional<SequenceHeader> FindSequenceHeader(AVCodecID codec, const std::vector<Bytes> &units);
/// The picture of a packet of MPEG-1, 2 or 4. Nothing if there is another count of pictures than one in it.
std::optional<PictureHeader> FindPictureHeader(AVCodecID codec, const std::vector<Bytes> &units);

/// Whether the first packet of a stream says that its picture is no pair of fields.
bool IsWholeFrame(const AVCodecParameters &parameters, const AVPacket &packet);

} // namespace kyh::media
