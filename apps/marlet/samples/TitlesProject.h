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

/// Titles in several scripts, to start from and to look at: styled text, effects, moving masks, grade layers,
/// and a ribbon in space, in two compositions. The texture of the ribbon is named as seen from the folder of
/// the project's file; there is none if the name is empty.
std::shared_ptr<project::Project> MakeTitlesProject(project::AudioVideoSettings::Preset preset,
                                                    int frameCount, const std::string &file,
                                                    const std::string &texture);

} // namespace marlet::tool
