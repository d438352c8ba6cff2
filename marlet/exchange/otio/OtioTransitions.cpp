#include <marlet/exchange/otio/OtioTransitions.h>

#include <marlet/editor/SequenceObject.h>
#include <marlet/editor/Transition.h>

namespace marlet::project
{

namespace
{

constexpr char kIncoming[] = "InTrans";
constexpr char kOutgoing[] = "OutTrans";

/// Whether a transition is of these objects, and neither begins behind the cut nor ends before it.
bool IsBetween(const Transition *transition, const kytl::KyID &from, const kytl::KyID &to)
{
    return transition && transition->FromObject() == from && transition->ToObject() == to &&
           transition->RelativeStartFrame() <= 0 &&
           std::int64_t{transition->RelativeStartFrame()} + transition->Length() >= 0;
}

bool Meet(const SequenceObject &before, const SequenceObject &object)
{
    return before.EndFrame() == object.StartFrame();
}

} // namespace

std::vector<OtioCuts> CutsOf(const std::vector<OtioObject> &objects)
{
    std::vector<OtioCuts> cuts(objects.size());
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const auto &[object, element] = objects[i];
        const auto &incoming = object->IncomingTransition();
        const auto &outgoing = object->OutgoingTransition();
        const SequenceObject *const before =
            i > 0 && Meet(*objects[i - 1].object, *object) ? objects[i - 1].object.get() : nullptr;
        const TextElement own = ProjectPieces::TransitionIn(element, kIncoming);
        if (before && before->OutgoingTransition() == incoming &&
            IsBetween(incoming.get(), before->ID(), object->ID())) {
            cuts[i].head = {incoming, ProjectPieces::TransitionIn(objects[i - 1].element, kOutgoing)};
            cuts[i].slots.push_back(kIncoming);
            cuts[i - 1].slots.push_back(kOutgoing);
        } else if (IsBetween(incoming.get(), {}, object->ID()) && !own.IsNull() &&
                   !(before && cuts[i - 1].tail.transition)) {
            cuts[i].head = {incoming, own};
            cuts[i].slots.push_back(kIncoming);
        }
        const TextElement tail = ProjectPieces::TransitionIn(element, kOutgoing);
        if (IsBetween(outgoing.get(), object->ID(), {}) && !tail.IsNull()) {
            cuts[i].tail = {outgoing, tail};
            cuts[i].slots.push_back(kOutgoing);
        }
    }
    for (std::size_t i = 0; i < objects.size(); ++i) {
        const bool hasIncoming = objects[i].object->IncomingTransition() != nullptr;
        const bool hasOutgoing = objects[i].object->OutgoingTransition() != nullptr;
        cuts[i].leavesOthers = std::size_t(hasIncoming) + std::size_t(hasOutgoing) > cuts[i].slots.size();
    }
    return cuts;
}

} // namespace marlet::project
