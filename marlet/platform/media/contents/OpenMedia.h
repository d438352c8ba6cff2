#pragma once

#include <marlet/platform/media/AudioStream.h>
#include <marlet/platform/media/MediaResources.h>
#include <marlet/platform/media/VideoStream.h>
#include <marlet/platform/media/files/FileSource.h>

#include <memory>
#include <string>

namespace kyh::media
{

/// What was found in a file: at least one stream.
struct OpenedMedia {
    FileSourcePtr source; ///< of the streams; null where pictures are opened one by one
    VideoFacts videoFacts;
    std::unique_ptr<FrameSource> frames; ///< null without a video stream
    SoundFacts soundFacts;
    std::unique_ptr<SoundReader> sound; ///< null without an audio stream
};

/// A container, or a picture as a clip of one frame. @throws MediaFailure
OpenedMedia OpenMediaFile(const std::string &path, const MediaResourcesPtr &resources);
/// The sequence that a picture is a member of. @throws MediaFailure
OpenedMedia OpenImageSequence(const std::string &path, double frameRate, const MediaResourcesPtr &resources);

} // namespace kyh::media
