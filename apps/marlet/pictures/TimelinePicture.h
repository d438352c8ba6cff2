#pragma once

#include <string>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// The tracks of the sequence, which there must be, to scale, as the text of an SVG file: objects with their
/// names, transitions, gaps and links, the playhead and the in and out points. The first video track stands
/// next to the first audio track, as editors have it.
std::string TimelinePicture(const project::Project &project);

} // namespace marlet::tool
