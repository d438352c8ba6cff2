#pragma once

#include <marlet/operations/sequence/Timeline.h>

#include <memory>
#include <optional>

namespace marlet::project
{

class AbstractPlugin;
class AbstractSequenceObject;
class Project;
class Transition;

// Transitions of the sequence of a project, as one Edit each. A shared one has its middle at the cut and
// stands in the slots of both objects; of an odd number of frames the later half is the longer. Its relative
// start frame counts from the cut. What does not fit is an OperationException, and nothing is changed. Null
// pointers are std::invalid_argument. Belongs to the thread that edits the project.

enum class Sharing {
    WithNeighbour, ///< between the object and the one that it meets at that end, if it meets one
    Alone          ///< at the end of the object, whatever it meets
};

/// How many frames a transition there can have, were that gone which there is: what those at the other ends
/// leave of the objects, and for a shared one what the assets have beyond the cut.
/// @throws OperationException if the object is on no track of the project
MARLET_EXPORT int TransitionRoom(const std::shared_ptr<Project> &project,
                                 const std::shared_ptr<AbstractSequenceObject> &object, ObjectEnd end,
                                 Sharing sharing);

/// What was there goes. Without a length it is half a second, or less if there is no room.
MARLET_EXPORT std::shared_ptr<Transition> SetTransition(const std::shared_ptr<Project> &project,
                                                        const std::shared_ptr<AbstractSequenceObject> &object,
                                                        ObjectEnd end,
                                                        const std::shared_ptr<AbstractPlugin> &plugin,
                                                        std::optional<int> length, Sharing sharing);

/// On both sides if it is shared. @throws OperationException if there is none
MARLET_EXPORT void RemoveTransition(const std::shared_ptr<Project> &project,
                                    const std::shared_ptr<AbstractSequenceObject> &object, ObjectEnd end);

} // namespace marlet::project
