#pragma once

#include <marlet/platform/media/AudioStream.h>
#include <marlet/platform/media/contents/FrameIndex.h>
#include <marlet/platform/media/contents/SoundIndex.h>
#include <marlet/platform/media/contents/VideoFacts.h>
#include <marlet/platform/media/files/Demuxer.h>

#include <memory>
#include <optional>

namespace kyh::media
{

struct VideoContents {
    int stream; ///< its number in the container
    VideoFacts facts;
    FrameIndex frames;

    bool operator==(const VideoContents &) const = default;
};

struct SoundContents {
    int stream;
    SoundFacts facts;
    SoundIndex samples;

    bool operator==(const SoundContents &) const = default;
};

/// What is learnt of a container: all that it takes to hand out its streams, with nothing that is open.
/// There is at least one stream.
struct MediaContents {
    std::optional<VideoContents> video;
    std::optional<SoundContents> sound;

    bool operator==(const MediaContents &) const = default;
};

/// Whether the index of a container may stand in for reading all of its packets.
enum class UseOfTables { Allowed, Forbidden };

/// Learns what is in a container, whose demuxer was made for the source.
/// @throws MediaFailure if there is nothing to see or hear
MediaContents LearnContents(const FileSourcePtr &source, std::unique_ptr<Demuxer> demuxer,
                            UseOfTables tables = UseOfTables::Allowed);

} // namespace kyh::media
