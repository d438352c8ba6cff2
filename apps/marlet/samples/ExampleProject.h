#pragma once

#include <marlet/foundation/AudioVideoSettings.h>

#include <memory>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// A small planetary system, to start from and to look at: a composition of lights, points and a camera that
/// hang on one another and move, a solid, folders and metadata.
std::shared_ptr<project::Project> MakeExampleProject(project::AudioVideoSettings::Preset preset,
                                                     int frameCount);

} // namespace marlet::tool
