#pragma once

namespace marlet::project
{
class Project;
}

namespace marlet::tool
{

class Output;

/// The sequence, which there must be, with its tracks, objects, links and transitions.
void WriteSequenceText(const project::Project &project, Output &output);
/// The same as JSON, one object a line.
void WriteSequenceJson(const project::Project &project, Output &output);

} // namespace marlet::tool
