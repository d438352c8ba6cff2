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

/// The shortest cut that has room for everything.
inline constexpr int kLeastCutFrames = 50;

/// A cut, to start from and to look at: the titles, and a sequence of four tracks with partners of picture
/// and sound, transitions, effects, a composition, and media files that are not there. The file is where the
/// project will stand.
std::shared_ptr<project::Project> MakeCutProject(project::AudioVideoSettings::Preset preset, int frameCount,
                                                 const std::string &file);

} // namespace marlet::tool
