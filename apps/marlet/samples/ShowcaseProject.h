#pragma once

#include <marlet/foundation/AudioVideoSettings.h>

#include <memory>
#include <string>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// What a showcase is made of: where its file will stand, and a clip and a picture that are there.
struct ShowcaseOptions {
    project::AudioVideoSettings::Preset preset;
    int frameCount;
    std::string file;
    std::string clip;
    std::string picture;
};

/// A project that uses every part of the library: the planetary system, the titles, the cut, and a studio: a
/// nested composition, a masked clip with a tracker, a solid, a still and a light in the space of a camera,
/// with effects.
/// @throws Failure if the clip has no video
std::shared_ptr<project::Project> MakeShowcaseProject(const ShowcaseOptions &options);

} // namespace marlet::tool
