#pragma once

#include "Document.h"

#include <memory>
#include <string>

namespace marlet::project
{
class MediaAudioStream;
class MediaManager;
class MediaVideoStream;
} // namespace marlet::project

namespace marlet::tool
{

class Arguments;

/// The rate of an image sequence, in frames per second, unless another one is given.
inline constexpr double kSequenceRate = 25;

/// A media asset and the project that it belongs to.
struct MediaSource {
    ProjectPointer project;
    MediaPointer media;
};

/// What the operand names, a project or a media file, which may be a member of an image sequence: in a
/// project the asset of "--asset", or the only one that there is.
/// @throws Failure if that is not clear, or if the file cannot be used
MediaSource OpenMediaSource(const Arguments &arguments);

/// A media file, and a new project that has nothing else. The asset is not on the project's list.
/// @throws Failure if the file cannot be used
MediaSource OpenMediaFile(const std::string &path, bool isSequence);

/// Does not fail for a file that cannot be used.
MediaPointer OpenMedia(project::MediaManager &manager, const std::string &path, bool isSequence,
                       double sequenceRate = kSequenceRate);

/// @throws Failure, with the file as its subject, unless the asset's file is open
void RequireUsable(const project::MediaAsset &media);

/// The value of an option that is a number of frames per second. @throws UsageError
double RateOption(const Arguments &arguments, const std::string &option);

// Never null. @throws Failure, with the file as its subject

std::shared_ptr<project::MediaVideoStream> VideoOf(const project::MediaAsset &media);
std::shared_ptr<project::MediaAudioStream> AudioOf(const project::MediaAsset &media);

/// @throws Failure, with the file as its subject, for any code of the media layer but 0
void RequireSuccess(const project::MediaAsset &media, int code, const std::string &work);

} // namespace marlet::tool
