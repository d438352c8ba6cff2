#include "Editing.h"
#include "Verb.h"
#include "options/FindByIdOrName.h"
#include "output/Failure.h"
#include "output/Output.h"
#include "plugins/PluginManager.h"
#include "plugins/Plugins.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/operations/sequence/SequenceClipboard.h>
#include <marlet/operations/sequence/SequenceObjects.h>
#include <marlet/operations/sequence/SequencePlacing.h>
#include <marlet/operations/sequence/SequenceRemoval.h>
#include <marlet/operations/sequence/SequenceTransitions.h>
#include <marlet/operations/sequence/SequenceTrimming.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/project/Project.h>

namespace marlet::tool
{

using namespace project;

namespace
{

PlaceMode ModeOf(const Arguments &arguments)
{
    if (arguments.Has("--overwrite") && arguments.Has("--ripple"))
        throw UsageError("either --overwrite or --ripple makes room, not both");
    return arguments.Has("--overwrite") ? PlaceMode::Overwrite
           : arguments.Has("--ripple")  ? PlaceMode::Insert
                                        : PlaceMode::Free;
}

void Insert(Editing &editing)
{
    Placement placement;
    placement.start = editing.Words().Integer("--at");
    placement.assetStart = editing.Number("--from").value_or(0);
    placement.length = editing.Number("--length");
    const PlaceMode mode = ModeOf(editing.Words());
    const TrackChoice ripple = editing.Ripple();
    placement.track = editing.Track("--track");
    placement.asset = editing.Asset(editing.Operand());
    placement.soundTrack = editing.OptionalTrack("--sound");
    editing.Tell("inserted", PlaceAsset(editing.Document(), placement, mode, ripple));
}

void Copy(Editing &editing)
{
    const int at = editing.Words().Integer("--at");
    const PlaceMode mode = ModeOf(editing.Words());
    const TrackChoice ripple = editing.Ripple();
    const CopiedObjects copied(editing.Document(), {editing.Object()}, editing.PartnerToo());
    editing.Tell("inserted", copied.Paste(editing.Document(), at, editing.OptionalTrack("--track"),
                                          editing.OptionalTrack("--sound"), mode, ripple));
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
    MoveObject(editing.Document(), object, start, editing.OptionalTrack("--track"), editing.PartnerToo());
    editing.Tell("moved", editing.Group(object));
}

void Remove(Editing &editing)
{
    const TrackChoice ripple = editing.Ripple();
    const ObjectPointer object = editing.Object();
    editing.Tell("removed", editing.Group(object));
    RemoveObject(editing.Document(), object, editing.PartnerToo(), ripple);
}

void Trim(Editing &editing)
{
    const std::optional<int> start = editing.Number("--start");
    const std::optional<int> end = editing.Number("--end");
    if (!start && !end)
        throw UsageError("--start or --end is needed");
    const TrackChoice ripple = editing.Ripple();
    const ObjectPointer object = editing.Object();
    TrimObject(editing.Document(), object, start.value_or(object->StartFrame()),
               end.value_or(object->EndFrame()), editing.PartnerToo(), ripple);
    editing.Tell("trimmed", editing.Group(object));
}

void Roll(Editing &editing)
{
    const int to = editing.Words().Integer("--to");
    const ObjectEnd side = editing.Side();
    const ObjectPointer object = editing.Object();
    RollCut(editing.Document(), object, side, to, editing.PartnerToo());
    editing.Tell("trimmed", editing.Group(object));
}

void Slip(Editing &editing)
{
    const int by = editing.Words().Integer("--by");
    const ObjectPointer object = editing.Object();
    SlipObject(editing.Document(), object, by, editing.PartnerToo());
    editing.Tell("slipped", editing.Group(object));
}

void Slide(Editing &editing)
{
    const int by = editing.Words().Integer("--by");
    const ObjectPointer object = editing.Object();
    SlideObject(editing.Document(), object, by, editing.PartnerToo());
    editing.Tell("moved", editing.Group(object));
}

void Speed(Editing &editing)
{
    const double factor = editing.Words().Real("--factor");
    const TrackChoice ripple = editing.Ripple();
    const ObjectPointer object = editing.Object();
    SetObjectSpeed(editing.Document(), object, factor, editing.PartnerToo(), ripple);
    editing.Tell("speed", editing.Group(object));
}

void Split(Editing &editing)
{
    const int frame = editing.Words().Integer("--at");
    const ObjectPointer object = editing.Object();
    const std::vector<ObjectPointer> tails =
        SplitObject(editing.Document(), object, frame, editing.PartnerToo());
    for (const ObjectPointer &head : editing.Group(object))
        if (head->EndFrame() == frame)
            editing.Tell("head", std::vector{head});
    editing.Tell("tail", tails);
}

void Join(Editing &editing)
{
    const ObjectPointer object = editing.Object();
    JoinObjects(editing.Document(), object, editing.PartnerToo());
    editing.Tell("joined", editing.Group(object));
}

void Link(Editing &editing)
{
    const ObjectPointer object = editing.Object();
    const ObjectPointer other = FindObject(editing.Sequence(), editing.Words().Text("--with"));
    LinkObjects(editing.Document(), object, other);
    editing.Tell("linked", {object, other});
}

void Unlink(Editing &editing)
{
    const ObjectPointer object = editing.Object();
    const std::vector<ObjectPointer> group = editing.Group(object);
    UnlinkObject(editing.Document(), object);
    editing.Tell("unlinked", group);
}

void Lift(Editing &editing)
{
    const int start = editing.Words().Integer("--start");
    const int end = editing.Words().Integer("--end");
    LiftFrames(editing.Document(), start, end, editing.Tracks());
    editing.Tell("lifted", "frames " + std::to_string(start) + " to " + std::to_string(end));
}

void Extract(Editing &editing)
{
    const int start = editing.Words().Integer("--start");
    const int end = editing.Words().Integer("--end");
    ExtractFrames(editing.Document(), start, end, editing.Tracks());
    editing.Tell("extracted", "frames " + std::to_string(start) + " to " + std::to_string(end));
}

void CloseAllGaps(Editing &editing)
{
    const int closed = CloseGaps(editing.Document(), editing.Tracks());
    editing.Tell("closed", Counted(static_cast<std::size_t>(closed), "frame"));
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
    const ObjectEnd end = editing.Side();
    const bool remove = arguments.Has("--remove");
    if (remove && (arguments.Has("--plugin") || arguments.Has("--length") || arguments.Has("--one-sided")))
        throw UsageError("--remove goes with --side alone");
    const std::optional<int> length = editing.Number("--length");
    const ObjectPointer object = editing.Object();
    if (remove) {
        RemoveTransition(editing.Document(), object, end);
        return;
    }
    const auto plugin =
        FindTransitionPlugin(arguments.Has("--plugin") ? arguments.Text("--plugin") : "Cross Dissolve");
    const TransitionPointer transition =
        SetTransition(editing.Document(), object, end, plugin, length,
                      arguments.Has("--one-sided") ? Sharing::Alone : Sharing::WithNeighbour);
    editing.Tell("set", "transition " + TransitionName(*transition) + " " +
                            TransitionEnds(editing.Sequence(), *transition) + ", " +
                            Counted(static_cast<std::size_t>(transition->Length()), "frame"));
}

void AddNewTrack(Editing &editing)
{
    const Arguments &arguments = editing.Words();
    const std::string type = arguments.Has("--type") ? arguments.Text("--type") : "video";
    if (type != "video" && type != "audio")
        throw UsageError("--type: \"" + type + "\" is neither video nor audio");
    const WideString name = FromUtf8(editing.Operand());
    const TrackPointer track =
        AddTrack(editing.Document(), type == "video" ? TrackType::Video : TrackType::Audio, name);
    editing.Tell("added", type + " track " + Quoted(name) + "  " + track->ID().ToNarrowString());
}

} // namespace

const std::vector<Verb> &SequenceVerbs()
{
    static const std::vector<Verb> verbs{
        {"insert", "ASSET --track T --at F [--from F] [--length N] [--sound T] [--overwrite | RIPPLE]",
         Insert},
        {"copy", "OBJECT --at F [--track T] [--sound T] [--unlinked] [--overwrite | RIPPLE]", Copy},
        {"move", "OBJECT [--to F | --by N] [--track T] [--unlinked]", Move},
        {"remove", "OBJECT [--unlinked] [RIPPLE]", Remove},
        {"trim", "OBJECT [--start F] [--end F] [--unlinked] [RIPPLE]", Trim},
        {"roll", "OBJECT --to F [--side head|tail] [--unlinked]", Roll},
        {"slip", "OBJECT --by N [--unlinked]", Slip},
        {"slide", "OBJECT --by N [--unlinked]", Slide},
        {"speed", "OBJECT --factor X [--unlinked] [RIPPLE]", Speed},
        {"split", "OBJECT --at F [--unlinked]", Split},
        {"join", "OBJECT [--unlinked]", Join},
        {"link", "OBJECT --with OBJECT", Link},
        {"unlink", "OBJECT", Unlink},
        {"lift", "--start F --end F [--tracks T,T]", Lift},
        {"extract", "--start F --end F [--tracks T,T]", Extract},
        {"close-gaps", "[--tracks T,T]", CloseAllGaps},
        {"transition", "OBJECT [--side head|tail] [--plugin P] [--length N] [--one-sided | --remove]",
         ChangeTransition},
        {"add-track", "NAME [--type video|audio]", AddNewTrack},
    };
    return verbs;
}

} // namespace marlet::tool
