#include "Failure.h"
#include "Output.h"
#include "SequenceEdit.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/plugins/AbstractPlugin.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace marlet::tool
{

using namespace project;

namespace
{

const TransitionPointer &TransitionAt(const AbstractSequenceObject &object, ObjectEnd end)
{
    return end == ObjectEnd::Head ? object.IncomingTransition() : object.OutgoingTransition();
}

bool IsShared(const Transition &transition)
{
    return !transition.FromObject().IsNull() && !transition.ToObject().IsNull();
}

/// What the transition at its other end leaves of an object.
long long RoomFor(const AbstractSequenceObject &object, ObjectEnd end)
{
    return object.Length() - (end == ObjectEnd::Head ? FramesIntoTail(object) : FramesIntoHead(object));
}

} // namespace

/// Takes the transition out of every slot that it is in.
void SequenceEdit::LoseTransition(TransitionPointer transition)
{
    losses_.push_back("transition " + TransitionName(*transition) + " " +
                      TransitionEnds(*sequence_, *transition));
    for (const ObjectPointer &object : ObjectsOf(*sequence_)) {
        if (object->IncomingTransition() == transition)
            object->ClearIncomingTransition();
        if (object->OutgoingTransition() == transition)
            object->ClearOutgoingTransition();
    }
    transition->ClearFromObject();
    transition->ClearToObject();
}

void SequenceEdit::LoseSharedTransition(const AbstractSequenceObject &object, ObjectEnd end)
{
    if (const TransitionPointer &transition = TransitionAt(object, end); transition && IsShared(*transition))
        LoseTransition(transition);
}

void SequenceEdit::LoseTransitionsThatDoNotFit(const AbstractSequenceObject &object)
{
    if (object.IncomingTransition() && FramesIntoHead(object) > object.Length())
        LoseTransition(object.IncomingTransition());
    if (object.OutgoingTransition() && FramesIntoTail(object) > RoomFor(object, ObjectEnd::Tail))
        LoseTransition(object.OutgoingTransition());
}

/// The object that meets this one at its end, or an empty pointer.
ObjectPointer SequenceEdit::NeighbourAt(const ObjectPointer &object, ObjectEnd end) const
{
    const TrackPointer track = TrackOf(*object);
    ObjectPointer previous;
    ObjectPointer next;
    if (end == ObjectEnd::Tail)
        return track->Objects().GetByStartFrame(object->EndFrame());
    track->Objects().FindAdjacentObjects(object->StartFrame(), previous, next, object);
    return previous && previous->EndFrame() == object->StartFrame() ? previous : nullptr;
}

bool SequenceEdit::RemoveTransition(const ObjectPointer &object, ObjectEnd end)
{
    if (!TransitionAt(*object, end))
        return false;
    LoseTransition(TransitionAt(*object, end));
    return true;
}

TransitionPointer SequenceEdit::SetTransition(const ObjectPointer &object, ObjectEnd end,
                                              const std::shared_ptr<AbstractPlugin> &plugin,
                                              std::optional<int> length, bool mayShare)
{
    const ObjectPointer neighbour = mayShare ? NeighbourAt(object, end) : nullptr;
    const ObjectPointer from = end == ObjectEnd::Tail ? object : neighbour;
    const ObjectPointer to = end == ObjectEnd::Head ? object : neighbour;
    RemoveTransition(object, end);
    if (neighbour)
        RemoveTransition(neighbour, end == ObjectEnd::Head ? ObjectEnd::Tail : ObjectEnd::Head);

    // A shared transition has its middle at the cut; of an odd number of frames the later half is the longer.
    constexpr long long kNoLimit = std::numeric_limits<int>::max();
    const long long before = from ? RoomFor(*from, ObjectEnd::Tail) : kNoLimit;
    const long long after = to ? RoomFor(*to, ObjectEnd::Head) : kNoLimit;
    const long long room = from && to ? std::min(2 * before + 1, 2 * after) : std::min(before, after);
    const long long half = std::llround(sequence_->Settings().FrameRate() / 2);
    const long long wanted = length ? *length : std::min(room, std::max(1LL, half));
    if (wanted < 1 || wanted > room)
        throw Failure("A transition of " + std::to_string(wanted) +
                      " frames does not fit: there is room for " + std::to_string(std::max(0LL, room)));

    TransitionPointer transition = Transition::Create(plugin);
    transition->SetLength(static_cast<int>(wanted));
    transition->SetRelativeStartFrame(static_cast<int>(!from ? 0 : to ? -(wanted / 2) : -wanted));
    if (from) {
        from->SetOutgoingTransition(transition);
        transition->SetFromObject(from->ID());
    }
    if (to) {
        to->SetIncomingTransition(transition);
        transition->SetToObject(to->ID());
    }
    return transition;
}

} // namespace marlet::tool
