#pragma once

#include <marlet/operations/sequence/SequenceOptions.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractSequenceObject;
class AbstractSequenceTrack;
class Project;

// Objects of the sequence of a project that move, fall in two, become one, and become partners, as one Edit
// each. Frames are of the sequence, ends are exclusive. Nothing overlaps, and nothing leaves the frames of
// the sequence: what would is an OperationException, and nothing is changed. Transitions that two objects
// share go when one of them leaves the cut. Null pointers are std::invalid_argument, but for a track that may
// stay. Belongs to the thread that edits the project.

/// Only the object itself changes its track, if there is one. The partner moves by as many frames.
MARLET_EXPORT void MoveObject(const std::shared_ptr<Project> &project,
                              const std::shared_ptr<AbstractSequenceObject> &object, long long start,
                              const std::shared_ptr<AbstractSequenceTrack> &track, Partner partner);

/// The object becomes the head. The tails, of the object first; a partner is split if the frame is inside of
/// it, and the tails become partners. The tail has the transition behind it, properties and effects of its
/// own, and key frames where they were in the sequence.
MARLET_EXPORT std::vector<std::shared_ptr<AbstractSequenceObject>>
SplitObject(const std::shared_ptr<Project> &project, const std::shared_ptr<AbstractSequenceObject> &object,
            int frame, Partner partner);

/// Undoes a split: the object takes in the one that it meets at its tail, which must go on with the same
/// asset at the same speed. Its own properties and effects stay, the other's go. A partner takes in what goes
/// on with it, if anything does.
MARLET_EXPORT void JoinObjects(const std::shared_ptr<Project> &project,
                               const std::shared_ptr<AbstractSequenceObject> &object, Partner partner);

/// Partners that they had have none any more.
MARLET_EXPORT void LinkObjects(const std::shared_ptr<Project> &project,
                               const std::shared_ptr<AbstractSequenceObject> &a,
                               const std::shared_ptr<AbstractSequenceObject> &b);
MARLET_EXPORT void UnlinkObject(const std::shared_ptr<Project> &project,
                                const std::shared_ptr<AbstractSequenceObject> &object);

} // namespace marlet::project
