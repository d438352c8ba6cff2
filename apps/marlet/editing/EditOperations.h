#pragma once

#include "document/Document.h"
#include "document/Timeline.h"
#include "options/Arguments.h"

#include <marlet/operations/sequence/SequenceOptions.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace marlet::tool
{

class Output;

/// What an operation of `edit` works with, and how it tells of what it did.
class Editing
{
public:
    /// The project must have a sequence. @throws Failure
    Editing(const ProjectPointer &project, const Arguments &arguments, Output &output);

    const ProjectPointer &Document() const { return project_; }
    const project::EditorSequence &Sequence() const { return *sequence_; }
    const Arguments &Words() const { return arguments_; }
    const std::string &Operand() const { return arguments_.Operand(3); }
    ObjectPointer Object() const { return FindObject(*sequence_, Operand()); }
    TrackPointer Track(const char *option) const { return FindTrack(*sequence_, arguments_.Text(option)); }
    /// An empty pointer if the option is not given.
    TrackPointer OptionalTrack(const char *option) const;
    std::optional<int> Number(const char *option) const;
    project::Partner PartnerToo() const;
    project::ObjectEnd Side() const;
    /// Those of --tracks, or else all.
    project::TrackChoice Tracks() const;
    /// The same with --ripple, none without.
    project::TrackChoice Ripple() const;
    /// The object, and its partner if that goes along.
    std::vector<ObjectPointer> Group(const ObjectPointer &object) const;

    void Tell(const std::string &what, const std::string &of) const;
    void Tell(const std::string &what, const std::vector<ObjectPointer> &objects) const;
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
    SequencePointer sequence_;
    const Arguments &arguments_;
    Output &output_;
    std::vector<HeldTransition> transitions_;
};

struct EditOperation {
    const char *name;
    const char *operand; ///< what it works on; null for nothing
    std::vector<const char *> options;
    void (*run)(Editing &);
};

/// The operation that the third operand names. @throws UsageError also for what does not go with it
const EditOperation &ChosenOperation(const Arguments &arguments);

} // namespace marlet::tool
