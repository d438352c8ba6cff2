#pragma once

#include <marlet/platform/media/files/FileSource.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace kyh::media
{

/// What libav keeps to itself of a track's table of samples.
struct MovTrack {
    std::uint32_t id = 0;
    std::vector<std::uint32_t> sizes;  ///< of the samples in bytes; empty if all have the same
    std::vector<std::int32_t> offsets; ///< from decoding to showing; empty if there are none
};

/// The tracks of a QuickTime or MPEG-4 file. Nothing if its table of samples may not be all that there is to
/// know: where the file goes on in fragments, is encrypted or changes its codec on the way, or if it is
/// damaged.
/// @throws MediaFailure if the file is no longer what it was
std::optional<std::vector<MovTrack>> ReadMovTracks(const FileSource &source);

} // namespace kyh::media
