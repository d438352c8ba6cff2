#pragma once

#include <cstddef>
#include <memory>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

class Output;

/// How much there is of everything in a project.
struct ProjectSums {
    std::size_t folders = 0;
    std::size_t assets = 0;
    std::size_t compositions = 0;
    std::size_t offlineAssets = 0;
    std::size_t layers = 0;
    std::size_t effects = 0;
    std::size_t masks = 0;
    std::size_t sequenceTracks = 0;
    std::size_t sequenceObjects = 0;
    std::size_t transitions = 0;
    std::size_t trackers = 0;
    std::size_t properties = 0;
    std::size_t animatedProperties = 0;
    std::size_t keyFrames = 0;
    std::size_t expressions = 0;
};

/// Without the root folder, which every project has.
ProjectSums CountProject(const project::Project &project);

/// Everything about a project in a form for people.
void WriteInfoText(project::Project &project, Output &output);

/// The same as one JSON object a line, each with a "kind".
void WriteInfoJson(project::Project &project, Output &output);

} // namespace marlet::tool
