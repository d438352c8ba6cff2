#pragma once

#include "document/Document.h"
#include "document/Timeline.h"
#include "options/Arguments.h"

#include <marlet/foundation/KyColorRGBA.h>
#include <marlet/operations/sequence/SequenceOptions.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace marlet::project
{
class AbstractAsset;
}

namespace marlet::tool
{

struct Verb;

/// What a verb of `edit` works with, and how it tells of what it did.
class Editing
{
public:
    /// The lines of the verb's answer are added to those that there are.
    Editing(const ProjectPointer &project, const Arguments &arguments, const Verb &verb,
            std::vector<std::string> &lines);

    const ProjectPointer &Document() const { return project_; }
    const Arguments &Words() const { return arguments_; }
    /// Those behind the verb.
    const std::string &Operand(std::size_t index = 0) const { return arguments_.Operand(first_ + index); }
    std::optional<int> Number(const char *option) const;
    project::WideString WideText(const char *option) const;

    /// That of --colour: "#ff8000", with or without its sign.
    kytl::KyColorRGBA_32f Colour() const;

    // Of the sequence. @throws Failure if there is none

    const project::EditorSequence &Sequence() const;
    ObjectPointer Object() const { return FindObject(Sequence(), Operand()); }
    TrackPointer Track(const char *option) const { return FindTrack(Sequence(), arguments_.Text(option)); }
    /// An empty pointer if the option is not given.
    TrackPointer OptionalTrack(const char *option) const;
    project::Partner PartnerToo() const;
    project::ObjectEnd Side() const;
    /// Those of --tracks, or else all.
    project::TrackChoice Tracks() const;
    /// The same with --ripple, none without.
    project::TrackChoice Ripple() const;
    /// The object, and its partner if that goes along.
    std::vector<ObjectPointer> Group(const ObjectPointer &object) const;

    // Of compositions. @throws Failure

    CompositionPointer Composition() const { return FindComposition(*project_, Operand()); }
    LayerPointer Layer() const { return FindLayer(*Composition(), Operand(1)); }
    /// Those of a list with commas.
    std::vector<LayerPointer> Layers(const char *option) const;
    std::shared_ptr<project::AbstractAsset> Asset(const std::string &idOrName) const;
    /// The place in the stack that --place gives, counted from 1; the topmost without it.
    unsigned int Place() const;

    void Tell(const std::string &what, const std::string &of) const;
    void Tell(const std::string &what, const std::vector<ObjectPointer> &objects) const;
    void Tell(const std::string &what, const LayerPointer &layer) const;
    void Tell(const std::string &what, const project::AbstractAsset &asset) const;
    /// That of the transitions there were when this was made some are gone, but for those that went with
    /// their only object.
    void TellOfLosses() const;

private:
    struct HeldTransition {
        TransitionPointer transition;
        std::string text;
        ObjectPointer onlyHolder; ///< of one that is not shared
    };

    ProjectPointer project_;
    SequencePointer sequence_; ///< or null
    const Arguments &arguments_;
    std::size_t first_;
    std::vector<std::string> &lines_;
    std::vector<HeldTransition> transitions_;
};

} // namespace marlet::tool
