#pragma once

#include <marlet/exchange/otio/OtioPieces.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class SequenceObject;
class Transition;

/// An object of a track with the element that its text is.
struct OtioObject {
    std::shared_ptr<const SequenceObject> object;
    TextElement element;
};

/// Where a transition stands among the objects of a track.
struct OtioCut {
    std::shared_ptr<Transition> transition;
    TextElement element; ///< of the transition
};

/// What of an object's transitions stands between clips. Others stay in the text of the object.
struct OtioCuts {
    OtioCut head;                    ///< one that it does not share, or shares with the one before it
    OtioCut tail;                    ///< one that it does not share
    std::vector<const char *> slots; ///< those that are empty then
    bool leavesOthers = false;       ///< some of its transitions are none that can stand between clips
};

/// The transitions of objects in the order of a track. Between two objects that meet there is room for one.
std::vector<OtioCuts> CutsOf(const std::vector<OtioObject> &objects);

} // namespace marlet::project
