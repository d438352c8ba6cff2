#pragma once

#include <string>

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

/// A picture of a project as SVG: who owns whom as an indented tree, and at its side arcs for who refers to
/// whom. A reference that leads nowhere is marked.
std::string TreePicture(const project::Project &project);

} // namespace marlet::tool
