#pragma once

#include <marlet/platform/media/contents/FrameIndex.h>
#include <marlet/platform/media/contents/PictureOrder.h>
#include <marlet/platform/media/files/FileSource.h>

namespace kyh::media
{

/// Makes sure which frames come of the packets of an index, by decoding where neither their times nor their
/// headers tell: the beginning of the clip, or all of it. `order`, which may be null, has seen all packets.
/// Whether the last frames come is left open. Returns the first frame if it was decoded, or null.
/// @throws MediaFailure if nothing decodes
FramePtr OrderFrames(const FileSourcePtr &source, int stream, const PictureOrder *order, FrameIndex &index);

/// Decodes the frame of a packet at which decoding may begin. Null if it does not come.
FramePtr DecodeFirst(const AVCodecParameters &parameters, AVPacket &packet);
/// Decodes the first frame that comes and leaves out those before it. @throws MediaFailure if none does
FramePtr TrimToFirst(const FileSourcePtr &source, int stream, FrameIndex &index);

} // namespace kyh::media
