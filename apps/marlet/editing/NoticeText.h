#pragma once

#include <string>
#include <vector>

namespace marlet::project
{
class ChangeNotice;
} // namespace marlet::project

namespace marlet::tool
{

class Standings;

/// A notice as lines: the step, then what changed of which object, then the frames that are stale. Objects
/// are called as before if they are gone.
std::vector<std::string> NoticeLines(const project::ChangeNotice &notice, const Standings &before,
                                     const Standings &after);

/// The same as one JSON object, with IDs.
std::string NoticeJson(const project::ChangeNotice &notice, const Standings &before, const Standings &after);

} // namespace marlet::tool
