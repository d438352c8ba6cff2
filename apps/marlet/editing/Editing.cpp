#include "EditOperations.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>

#include <algorithm>

namespace marlet::tool
{

using namespace project;

Editing::Editing(const ProjectPointer &project, const Arguments &arguments, Output &output)
    : project_(project), sequence_(SequenceOf(*project)), arguments_(arguments), output_(output)
{
    for (const ObjectPointer &object : ObjectsOf(*sequence_)) {
        for (const TransitionPointer &transition :
             {object->IncomingTransition(), object->OutgoingTransition()}) {
            if (!transition)
                continue;
            const bool isShared = !transition->FromObject().IsNull() && !transition->ToObject().IsNull();
            // The object before the cut tells of a shared one.
            if (isShared && transition == object->IncomingTransition())
                continue;
            transitions_.push_back(
                {transition,
                 "transition " + TransitionName(*transition) + " " + TransitionEnds(*sequence_, *transition),
                 isShared ? nullptr : object});
        }
    }
}

TrackPointer Editing::OptionalTrack(const char *option) const
{
    return arguments_.Has(option) ? Track(option) : nullptr;
}

std::optional<int> Editing::Number(const char *option) const
{
    return arguments_.Has(option) ? std::optional(arguments_.Integer(option)) : std::nullopt;
}

Partner Editing::PartnerToo() const
{
    return arguments_.Has("--unlinked") ? Partner::Stays : Partner::GoesAlong;
}

ObjectEnd Editing::Side() const
{
    const std::string end = arguments_.Has("--side") ? arguments_.Text("--side") : "tail";
    if (end != "head" && end != "tail")
        throw UsageError("--side: \"" + end + "\" is neither head nor tail");
    return end == "head" ? ObjectEnd::Head : ObjectEnd::Tail;
}

TrackChoice Editing::Tracks() const
{
    if (!arguments_.Has("--tracks"))
        return TrackChoice::All();
    const std::string &names = arguments_.Text("--tracks");
    std::vector<TrackPointer> tracks;
    for (std::size_t start = 0; start <= names.size();) {
        const std::size_t comma = std::min(names.find(',', start), names.size());
        tracks.push_back(FindTrack(*sequence_, names.substr(start, comma - start)));
        start = comma + 1;
    }
    return TrackChoice::Of(std::move(tracks));
}

TrackChoice Editing::Ripple() const
{
    if (arguments_.Has("--ripple"))
        return Tracks();
    if (arguments_.Has("--tracks"))
        throw UsageError("--tracks goes with --ripple");
    return TrackChoice::None();
}

std::vector<ObjectPointer> Editing::Group(const ObjectPointer &object) const
{
    std::vector<ObjectPointer> group{object};
    if (const ObjectPointer partner = PartnerOf(*sequence_, *object);
        partner && PartnerToo() == Partner::GoesAlong)
        group.push_back(partner);
    return group;
}

void Editing::Tell(const std::string &what, const std::string &of) const
{
    output_.Line(PadRight(what, 10) + of);
}

void Editing::Tell(const std::string &what, const std::vector<ObjectPointer> &objects) const
{
    for (const ObjectPointer &object : objects) {
        const TrackPointer track = sequence_->FindSequenceTrackByID(object->ParentTrackID());
        Tell(what, Quoted(object->Name()) + "  frames " + std::to_string(object->StartFrame()) + " to " +
                       std::to_string(object->EndFrame()) +
                       (track ? " of track " + Quoted(track->Name()) : "") + "  " +
                       object->ID().ToNarrowString());
    }
}

void Editing::TellOfLosses() const
{
    std::vector<TransitionPointer> left;
    for (const ObjectPointer &object : ObjectsOf(*sequence_))
        left.insert(left.end(), {object->IncomingTransition(), object->OutgoingTransition()});
    for (const HeldTransition &held : transitions_)
        if (std::find(left.begin(), left.end(), held.transition) == left.end() &&
            (!held.onlyHolder || !held.onlyHolder->ParentTrackID().IsNull()))
            Tell("removed", held.text);
}

} // namespace marlet::tool
