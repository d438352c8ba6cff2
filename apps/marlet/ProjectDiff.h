#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// One thing in which two projects differ.
struct Difference {
    enum class Kind { Added, Removed, Moved, Changed };

    Kind kind;
    std::vector<std::string> place; ///< from the outside in, such as "layer "Title"", "property position"
    std::string what;   ///< the field that changed; empty where the innermost place itself is meant
    std::string before; ///< a value, or a place among its neighbours, counted from 1
    std::string after;
};

/// All differences, in the order of the first project. What has an ID is compared with what has the same ID,
/// wherever it stands among its neighbours. Nothing that a file holds is left out.
std::vector<Difference> CompareProjects(const project::Project &before, const project::Project &after);

} // namespace marlet::tool
