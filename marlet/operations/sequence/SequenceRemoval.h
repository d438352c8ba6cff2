#pragma once

#include <marlet/operations/sequence/SequenceOptions.h>

#include <memory>

namespace marlet::project
{

class AbstractSequenceObject;
class Project;

// What leaves the sequence of a project, as one Edit each. Frames are of the sequence, ends are exclusive.
// Transitions that two objects share go with either of them; partners of what goes have none any more. What
// cannot be done is an OperationException, and nothing is changed. Null pointers are std::invalid_argument.
// Belongs to the thread that edits the project.

/// Leaves a gap, or closes it with a ripple. On the other tracks of that what starts behind the object moves,
/// which is refused where it runs into what stays.
MARLET_EXPORT void RemoveObject(const std::shared_ptr<Project> &project,
                                const std::shared_ptr<AbstractSequenceObject> &object, Partner partner,
                                const TrackChoice &ripple = TrackChoice::None());

/// Leaves these frames of the tracks empty. What reaches over them is cut, and the tails of partners that are
/// cut both become partners.
MARLET_EXPORT void LiftFrames(const std::shared_ptr<Project> &project, int start, int end,
                              const TrackChoice &tracks);
/// The same, and what lies behind moves up.
MARLET_EXPORT void ExtractFrames(const std::shared_ptr<Project> &project, int start, int end,
                                 const TrackChoice &tracks);

/// Moves up what lies behind frames in which none of the tracks has anything, so that the tracks keep step.
/// Returns how many frames went.
MARLET_EXPORT int CloseGaps(const std::shared_ptr<Project> &project, const TrackChoice &tracks);

} // namespace marlet::project
