#include "Arguments.h"
#include "Failure.h"
#include "FindByIdOrName.h"
#include "SequenceEdit.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::tool
{

using namespace project;

namespace
{

/// What an operation works with, and how it tells of what it did.
class Editing
{
public:
    Editing(const ProjectPointer &project, const Arguments &arguments, Output &output)
        : project_(project),
          sequence_(SequenceOf(*project)),
          edit_(project),
          arguments_(arguments),
          output_(output)
    {
    }

    const Project &Document() const { return *project_; }
    EditorSequence &Sequence() const { return *sequence_; }
    SequenceEdit &Edit() { return edit_; }
    const Arguments &Words() const { return arguments_; }
    const std::string &Operand() const { return arguments_.Operand(3); }
    ObjectPointer Object() const { return FindObject(*sequence_, Operand()); }
    TrackPointer Track(const char *option) const { return FindTrack(*sequence_, arguments_.Text(option)); }

    std::optional<int> Number(const char *option) const
    {
        return arguments_.Has(option) ? std::optional(arguments_.Integer(option)) : std::nullopt;
    }

    Partner PartnerToo() const { return arguments_.Has("--unlinked") ? Partner::Stays : Partner::GoesAlong; }

    /// The object, and its partner if that goes along.
    std::vector<ObjectPointer> Group(const ObjectPointer &object) const
    {
        std::vector<ObjectPointer> group{object};
        if (const ObjectPointer partner = PartnerOf(*sequence_, *object);
            partner && PartnerToo() == Partner::GoesAlong)
            group.push_back(partner);
        return group;
    }

    void Tell(const std::string &what, const std::string &of) const { output_.Line(PadRight(what, 10) + of); }

    void Tell(const std::string &what, const std::vector<ObjectPointer> &objects) const
    {
        for (const ObjectPointer &object : objects) {
            const TrackPointer track = sequence_->FindSequenceTrackByID(object->ParentTrackID());
            Tell(what, Quoted(object->Name()) + "  frames " + std::to_string(object->StartFrame()) + " to " +
                           std::to_string(object->EndFrame()) +
                           (track ? " of track " + Quoted(track->Name()) : "") + "  " +
                           object->ID().ToNarrowString());
        }
    }

private:
    ProjectPointer project_;
    SequencePointer sequence_;
    SequenceEdit edit_;
    const Arguments &arguments_;
    Output &output_;
};

void Insert(Editing &editing)
{
    SequenceEdit::Insertion insertion;
    insertion.start = editing.Words().Integer("--at");
    insertion.assetStart = editing.Number("--from").value_or(0);
    insertion.length = editing.Number("--length");
    insertion.track = editing.Track("--track");
    insertion.asset = FindByIdOrName(editing.Document().Assets().All(), "asset", editing.Operand());
    if (editing.Words().Has("--sound")) {
        insertion.soundTrack = editing.Track("--sound");
        if (insertion.track->Type() != TrackType::Video || insertion.soundTrack->Type() != TrackType::Audio)
            throw Failure(
                "--track is for the picture then and must be a video track, --sound an audio track");
    }
    editing.Tell("inserted", editing.Edit().Insert(insertion));
}

void Move(Editing &editing)
{
    const std::optional<int> to = editing.Number("--to");
    const std::optional<int> by = editing.Number("--by");
    if (to && by)
        throw UsageError("either --to or --by is needed, not both");
    if (!to && !by && !editing.Words().Has("--track"))
        throw UsageError("one of --to, --by and --track is needed");
    const ObjectPointer object = editing.Object();
    const long long start = to ? *to : static_cast<long long>(object->StartFrame()) + by.value_or(0);
    const TrackPointer track = editing.Words().Has("--track") ? editing.Track("--track") : nullptr;
    editing.Edit().Move(object, start, track, editing.PartnerToo());
    editing.Tell("moved", editing.Group(object));
}

void Remove(Editing &editing)
{
    const ObjectPointer object = editing.Object();
    editing.Tell("removed", editing.Group(object));
    editing.Edit().Remove(object, editing.PartnerToo());
}

void Trim(Editing &editing)
{
    const std::optional<int> start = editing.Number("--start");
    const std::optional<int> end = editing.Number("--end");
    if (!start && !end)
        throw UsageError("--start or --end is needed");
    const ObjectPointer object = editing.Object();
    editing.Edit().Trim(object, start.value_or(object->StartFrame()), end.value_or(object->EndFrame()),
                        editing.PartnerToo());
    editing.Tell("trimmed", editing.Group(object));
}

void Split(Editing &editing)
{
    const int frame = editing.Words().Integer("--at");
    const ObjectPointer object = editing.Object();
    const std::vector<ObjectPointer> tails = editing.Edit().Split(object, frame, editing.PartnerToo());
    for (const ObjectPointer &head : editing.Group(object))
        if (head->EndFrame() == frame)
            editing.Tell("head", std::vector{head});
    editing.Tell("tail", tails);
}

ObjectEnd EndOf(const Arguments &arguments)
{
    const std::string end = arguments.Has("--side") ? arguments.Text("--side") : "tail";
    if (end != "head" && end != "tail")
        throw UsageError("--side: \"" + end + "\" is neither head nor tail");
    return end == "head" ? ObjectEnd::Head : ObjectEnd::Tail;
}

std::shared_ptr<AbstractPlugin> FindTransitionPlugin(const std::string &idOrName)
{
    const std::vector<std::shared_ptr<AbstractPlugin>> plugins{Plugins()->FindPlugin(kCrossDissolveID),
                                                               Plugins()->FindPlugin(kWipeID)};
    return FindByIdOrName(plugins, "transition plug-in", idOrName);
}

void ChangeTransition(Editing &editing)
{
    const Arguments &arguments = editing.Words();
    const ObjectEnd end = EndOf(arguments);
    const bool remove = arguments.Has("--remove");
    if (remove && (arguments.Has("--plugin") || arguments.Has("--length") || arguments.Has("--one-sided")))
        throw UsageError("--remove goes with --side alone");
    const std::optional<int> length = editing.Number("--length");
    const ObjectPointer object = editing.Object();
    if (remove) {
        if (!editing.Edit().RemoveTransition(object, end))
            throw Failure("Object " + Quoted(object->Name()) + " has no transition there");
        return;
    }
    const auto plugin =
        FindTransitionPlugin(arguments.Has("--plugin") ? arguments.Text("--plugin") : "Cross Dissolve");
    const TransitionPointer transition =
        editing.Edit().SetTransition(object, end, plugin, length, !arguments.Has("--one-sided"));
    editing.Tell("set", "transition " + TransitionName(*transition) + " " +
                            TransitionEnds(editing.Sequence(), *transition) + ", " +
                            Counted(static_cast<std::size_t>(transition->Length()), "frame"));
}

void AddTrack(Editing &editing)
{
    const Arguments &arguments = editing.Words();
    const std::string type = arguments.Has("--type") ? arguments.Text("--type") : "video";
    const WideString name = FromUtf8(editing.Operand());
    TrackPointer track;
    if (type == "video") {
        editing.Sequence().VideoTracks().Add(VideoTrack::Create(&editing.Sequence(), name));
        track = editing.Sequence().VideoTracks().back();
    } else if (type == "audio") {
        editing.Sequence().AudioTracks().Add(AudioTrack::Create(&editing.Sequence(), name));
        track = editing.Sequence().AudioTracks().back();
    } else {
        throw UsageError("--type: \"" + type + "\" is neither video nor audio");
    }
    editing.Tell("added", type + " track " + Quoted(name) + "  " + track->ID().ToNarrowString());
}

struct Operation {
    const char *name;
    const char *operand;
    std::vector<const char *> options;
    void (*run)(Editing &);
};

const Operation &FindOperation(const std::string &name)
{
    static const Operation operations[] = {
        {"insert", "an asset", {"--track", "--at", "--from", "--length", "--sound"}, Insert},
        {"move", "an object", {"--to", "--by", "--track", "--unlinked"}, Move},
        {"remove", "an object", {"--unlinked"}, Remove},
        {"trim", "an object", {"--start", "--end", "--unlinked"}, Trim},
        {"split", "an object", {"--at", "--unlinked"}, Split},
        {"transition",
         "an object",
         {"--side", "--plugin", "--length", "--one-sided", "--remove"},
         ChangeTransition},
        {"add-track", "a name", {"--type"}, AddTrack},
    };
    const auto found = std::find_if(std::begin(operations), std::end(operations),
                                    [&](const Operation &operation) { return operation.name == name; });
    if (found == std::end(operations))
        throw UsageError("there is no operation \"" + name + "\"");
    return *found;
}

const Operation &ChosenOperation(const Arguments &arguments)
{
    if (arguments.Operands().size() < 3)
        throw UsageError("an operation is missing");
    const Operation &operation = FindOperation(arguments.Operand(2));
    if (arguments.Operands().size() < 4)
        throw UsageError(std::string(operation.name) + " needs " + operation.operand);
    for (const OptionSpec &option : EditCommand().options)
        if (arguments.Has(option.name) && std::find(operation.options.begin(), operation.options.end(),
                                                    option.name) == operation.options.end())
            throw UsageError(option.name + " does not go with " + operation.name);
    return operation;
}

void Run(const Arguments &arguments, Output &output)
{
    const Operation &operation = ChosenOperation(arguments);
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    Editing editing(project, arguments, output);
    operation.run(editing);
    for (const std::string &loss : editing.Edit().Losses())
        editing.Tell("removed", loss);
    FillInstances(*project);
    WriteProject(*project, arguments.Operand(1));
}

} // namespace

const CommandSpec &EditCommand()
{
    static const CommandSpec command{
        "edit",
        "changes the sequence: inserts, moves, removes, trims and splits objects, sets transitions",
        "FILE OUT insert ASSET --track T --at F [--from F] [--length N] [--sound T]\n"
        "FILE OUT move OBJECT [--to F | --by N] [--track T] [--unlinked]\n"
        "FILE OUT remove OBJECT [--unlinked]\n"
        "FILE OUT trim OBJECT [--start F] [--end F] [--unlinked]\n"
        "FILE OUT split OBJECT --at F [--unlinked]\n"
        "FILE OUT transition OBJECT [--side head|tail] [--plugin P] [--length N] [--one-sided]\n"
        "FILE OUT transition OBJECT [--side head|tail] --remove\n"
        "FILE OUT add-track NAME [--type video|audio]",
        2,
        4,
        {{"--track", "T", "the track, by ID or name"},
         {"--sound", "T", "the track of the asset's sound, which becomes a partner of the picture"},
         {"--at", "F", "the frame of the sequence"},
         {"--from", "F", "the first frame of the asset that is used; 0 if not given"},
         {"--length", "N", "in frames; what the asset has, or half a second for a transition, if not given"},
         {"--to", "F", "the new first frame"},
         {"--by", "N", "how many frames later, or earlier if negative"},
         {"--start", "F", "the new first frame; the picture does not move under it"},
         {"--end", "F", "the new end, a frame behind the last one"},
         {"--unlinked", "", "the partner stays as it is; else it goes along by as many frames"},
         {"--side", "S", "which end of the object; tail if not given"},
         {"--plugin", "P", "the transition, by ID or name; Cross Dissolve if not given"},
         {"--one-sided", "", "at the end of this object alone, even if another one meets it there"},
         {"--remove", "", "takes the transition away, on both sides if it is shared"},
         {"--type", "T", "video or audio; video if not given"}},
        Run,
        "edit examples/cut.xml shorter.xml trim \"Sea\" --end 145",
        "An object is given by ID, NAME, TRACK/NAME or TRACK@FRAME. A name that only a picture and\n"
        "its sound have is that of the picture. Nothing is written if an object would cover another\n"
        "one, or frames that the sequence or the asset does not have. A shared transition goes when\n"
        "one of its objects leaves the cut, and any transition when its object gets too short for it;\n"
        "each such loss is told of. The tail of a split keeps the transition behind it, and the tails\n"
        "of two partners become partners.\n"};
    return command;
}

} // namespace marlet::tool
