#pragma once

#include <marlet/platform/media/LibavHandles.h>

namespace kyh::media
{

// What libav leaves to the decoder of H.264 and HEVC streams.

/// Whether no picture of an H.264 stream can be a field, as all of its headers say. They may also stand where
/// this does not look.
bool HasFramesOnly(const AVCodecParameters &parameters);

/// Whether a packet says how its picture is to be turned.
bool HasOrientation(const AVCodecParameters &parameters, const AVPacket &packet);
/// Whether a packet says whether its picture is a field.
bool HasPictureTiming(const AVCodecParameters &parameters, const AVPacket &packet);

} // namespace kyh::media
