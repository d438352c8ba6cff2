#pragma once

#include <string>
#include <vector>

namespace marlet::project
{
class ChangeNotice;
class Project;
} // namespace marlet::project

namespace marlet::tool
{

/// A notice as lines: the step, then what changed of which object, then the frames that are stale.
std::vector<std::string> NoticeLines(const project::Project &project, const project::ChangeNotice &notice);

} // namespace marlet::tool
