#pragma once

#include <marlet/operations/sequence/SequenceOptions.h>
#include <marlet/operations/sequence/Timeline.h>

#include <memory>

namespace marlet::project
{

class AbstractSequenceObject;
class Project;

// Other edges, other frames of the asset, another speed for objects of the sequence of a project, as one Edit
// each. Frames are of the sequence, ends are exclusive. Nothing overlaps, and nothing leaves the frames of
// the sequence or those of its asset: what would is an OperationException, and nothing is changed.
// Transitions go where an object gets too short for them; shared ones stay while their objects meet. Null
// pointers are std::invalid_argument. Belongs to the thread that edits the project.

/// The picture and key frames do not move under the new edges. A partner is trimmed by as many frames.
///
/// With a ripple the start stays where it is in the sequence, and what comes behind the edge that moves comes
/// or goes by as many frames; on the other tracks of the ripple that is what starts behind it, which is
/// refused where it runs into what stays.
MARLET_EXPORT void TrimObject(const std::shared_ptr<Project> &project,
                              const std::shared_ptr<AbstractSequenceObject> &object, long long start,
                              long long end, Partner partner,
                              const TrackChoice &ripple = TrackChoice::None());

/// Moves the cut between the object and the one that it meets at that end. That of their partners moves along
/// if it is on the same frame.
MARLET_EXPORT void RollCut(const std::shared_ptr<Project> &project,
                           const std::shared_ptr<AbstractSequenceObject> &object, ObjectEnd end, int frame,
                           Partner partner);

/// Shows frames of the asset that lie so many frames later, or earlier if negative.
MARLET_EXPORT void SlipObject(const std::shared_ptr<Project> &project,
                              const std::shared_ptr<AbstractSequenceObject> &object, int frames,
                              Partner partner);

/// Moves the object by frames, and trims those that it meets so that they still do.
MARLET_EXPORT void SlideObject(const std::shared_ptr<Project> &project,
                               const std::shared_ptr<AbstractSequenceObject> &object, int frames,
                               Partner partner);

/// A factor above 0. The object goes on to show the same frames of its asset in fewer or more frames of the
/// sequence, at least in one; a still keeps its length. The partner gets the same speed. A ripple is that of
/// TrimObject.
MARLET_EXPORT void SetObjectSpeed(const std::shared_ptr<Project> &project,
                                  const std::shared_ptr<AbstractSequenceObject> &object, double speed,
                                  Partner partner, const TrackChoice &ripple = TrackChoice::None());

} // namespace marlet::project
