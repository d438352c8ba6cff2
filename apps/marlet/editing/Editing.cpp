#include "Editing.h"

#include "Verb.h"
#include "options/FindByIdOrName.h"
#include "output/Failure.h"
#include "output/Output.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <charconv>
#include <unordered_set>

namespace marlet::tool
{

using namespace project;

namespace
{

/// The parts of a list with commas.
std::vector<std::string> ListOf(const std::string &text)
{
    std::vector<std::string> parts;
    for (std::size_t start = 0; start <= text.size();) {
        const std::size_t comma = std::min(text.find(',', start), text.size());
        parts.push_back(text.substr(start, comma - start));
        start = comma + 1;
    }
    return parts;
}

} // namespace

Editing::Editing(const ProjectPointer &project, const Arguments &arguments, const Verb &verb,
                 std::vector<std::string> &lines)
    : project_(project),
      sequence_(project->Sequence()),
      arguments_(arguments),
      first_(2 + verb.NameWords()),
      lines_(lines)
{
    if (!sequence_)
        return;
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

const EditorSequence &Editing::Sequence() const
{
    return sequence_ ? *sequence_ : *SequenceOf(*project_);
}

WideString Editing::WideText(const char *option) const
{
    return FromUtf8(arguments_.Text(option));
}

std::vector<LayerPointer> Editing::Layers(const char *option) const
{
    std::vector<LayerPointer> layers;
    for (const std::string &name : ListOf(arguments_.Text(option)))
        layers.push_back(FindLayer(*Composition(), name));
    return layers;
}

std::shared_ptr<AbstractAsset> Editing::Asset(const std::string &idOrName) const
{
    return FindByIdOrName(project_->Assets().All(), "asset", idOrName);
}

unsigned int Editing::Place() const
{
    const int place = Number("--place").value_or(1);
    if (place < 1)
        throw UsageError("--place counts from 1");
    return static_cast<unsigned int>(place - 1);
}

kytl::KyColorRGBA_32f Editing::Colour() const
{
    std::string_view text = arguments_.Text("--colour");
    if (text.starts_with('#'))
        text.remove_prefix(1);
    unsigned int value = 0;
    const auto [stop, error] = std::from_chars(text.data(), text.data() + text.size(), value, 16);
    if (text.size() != 6 || error != std::errc() || stop != text.data() + text.size())
        throw UsageError("--colour: \"" + std::string(text) + "\" is no colour, such as ff8000");
    const auto part = [value](int shift) { return static_cast<float>(value >> shift & 0xFF) / 255; };
    return {part(16), part(8), part(0), 1};
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
    std::vector<TrackPointer> tracks;
    for (const std::string &name : ListOf(arguments_.Text("--tracks")))
        tracks.push_back(FindTrack(Sequence(), name));
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
    if (const ObjectPointer partner = PartnerOf(Sequence(), *object);
        partner && PartnerToo() == Partner::GoesAlong)
        group.push_back(partner);
    return group;
}

void Editing::Tell(const std::string &what, const std::string &of) const
{
    lines_.push_back(PadRight(what, 10) + of);
}

void Editing::Tell(const std::string &what, const std::vector<ObjectPointer> &objects) const
{
    for (const ObjectPointer &object : objects) {
        const TrackPointer track = Sequence().FindSequenceTrackByID(object->ParentTrackID());
        Tell(what, Quoted(object->Name()) + "  frames " + std::to_string(object->StartFrame()) + " to " +
                       std::to_string(object->EndFrame()) +
                       (track ? " of track " + Quoted(track->Name()) : "") + "  " +
                       object->ID().ToNarrowString());
    }
}

void Editing::Tell(const std::string &what, const LayerPointer &layer) const
{
    Tell(what, "layer " + Quoted(layer->Name()) + "  frames " + std::to_string(layer->StartFrame()) + " to " +
                   std::to_string(layer->EndFrame()) + "  " + layer->ID().ToNarrowString());
}

void Editing::Tell(const std::string &what, const AbstractAsset &asset) const
{
    Tell(what, "asset " + Quoted(asset.Name()) + "  " + asset.ID().ToNarrowString());
}

void Editing::TellOfLosses() const
{
    if (!sequence_)
        return;
    std::unordered_set<TransitionPointer> left;
    for (const ObjectPointer &object : ObjectsOf(*sequence_))
        left.insert({object->IncomingTransition(), object->OutgoingTransition()});
    for (const HeldTransition &held : transitions_)
        if (!left.contains(held.transition) &&
            (!held.onlyHolder || !held.onlyHolder->ParentTrackID().IsNull()))
            Tell("removed", held.text);
}

} // namespace marlet::tool
