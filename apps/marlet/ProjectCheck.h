#pragma once

#include <string>
#include <vector>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// Something about a project that a person should look at.
struct Finding {
    std::string kind;
    std::string place; ///< of what it is, such as layer "Moon" of composition "Orbit"
    std::string what;
};

/// IDs that dangle or repeat, parents in a circle, assets that are missing on disk, and property values of an
/// unexpected type.
std::vector<Finding> CheckProject(const project::Project &project);

} // namespace marlet::tool
