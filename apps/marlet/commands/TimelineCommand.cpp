#include "document/Document.h"
#include "document/ProjectCheck.h"
#include "document/Timeline.h"
#include "info/InfoParts.h"
#include "options/Arguments.h"
#include "output/Failure.h"
#include "output/Names.h"
#include "output/Output.h"
#include "output/TextFile.h"
#include "output/Warning.h"
#include "pictures/TimelinePicture.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/foundation/TimeCode.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <unordered_set>

namespace marlet::tool
{

using namespace project;

namespace
{

std::string Time(const EditorSequence &sequence, int frame)
{
    return TimeCode::FromFrame(frame, sequence.Settings().FrameRate()).ToString();
}

/// A stretch of a track: an object, or nothing. Objects may overlap in a file that no host keeps in order.
struct Stretch {
    long long start;
    long long end;
    ObjectPointer object;
    bool overlaps; ///< what is before it
};

/// In time order, up to the end of the sequence.
std::vector<Stretch> StretchesOf(const EditorSequence &sequence, const AbstractSequenceTrack &track)
{
    std::vector<Stretch> stretches;
    long long covered = 0;
    const auto fillUpTo = [&](long long frame) {
        if (frame > covered)
            stretches.push_back({covered, frame, nullptr, false});
    };
    for (const ObjectPointer &object : ObjectsOf(track)) {
        fillUpTo(object->StartFrame());
        stretches.push_back({object->StartFrame(), object->EndFrame(), object,
                             !stretches.empty() && object->StartFrame() < covered});
        covered = std::max<long long>(covered, object->EndFrame());
    }
    fillUpTo(sequence.Settings().FrameCount());
    return stretches;
}

std::string AssetOf(const Project &project, const AbstractSequenceObject &object)
{
    const auto asset = object.Asset(project.Assets());
    return AssetTypeName(object.AssetType()) + " " +
           (asset ? Quoted(asset->Name()) + (asset->IsOffline() ? " (offline)" : "")
                  : object.AssetID().ToNarrowString() + " (not there)");
}

std::string TransitionText(const EditorSequence &sequence, const Transition &transition)
{
    return TransitionName(transition) + " " + TransitionEnds(sequence, transition) + ", " +
           std::to_string(transition.Length()) + " frames";
}

void WriteStretchText(const Project &project, const Stretch &stretch, Output &output)
{
    const EditorSequence &sequence = *project.Sequence();
    const std::string line = PadLeft(std::to_string(stretch.start), 9) +
                             PadLeft(std::to_string(stretch.end), 9) +
                             PadLeft(std::to_string(stretch.end - stretch.start), 8) + "  " +
                             PadRight(Time(sequence, static_cast<int>(stretch.start)), 13);
    const std::string below(41, ' ');
    if (!stretch.object) {
        output.Line(line + "- gap");
        return;
    }
    const AbstractSequenceObject &object = *stretch.object;
    const ObjectPointer partner = PartnerOf(sequence, object);
    const TrackPointer with = partner ? sequence.FindSequenceTrackByID(partner->ParentTrackID()) : nullptr;
    if (const auto &incoming = object.IncomingTransition(); incoming && incoming->FromObject().IsNull())
        output.Line(below + "x " + TransitionText(sequence, *incoming));
    output.Line(line + Quoted(object.Name()) + "  " + AssetOf(project, object) + " from " +
                std::to_string(object.AssetInstanceStart()) +
                (with ? ", linked to track " + Quoted(with->Name()) : "") +
                (stretch.overlaps ? ", overlaps what is before it" : ""));
    if (object.OutgoingTransition())
        output.Line(below + "x " + TransitionText(sequence, *object.OutgoingTransition()));
}

void WriteTableText(const Project &project, Output &output)
{
    const EditorSequence &sequence = *project.Sequence();
    output.Line("Sequence " + Quoted(sequence.Name()) + "  " + FormatText(sequence.Settings()));
    output.Line("work area " + std::to_string(sequence.InPoint()) + " to " +
                std::to_string(sequence.OutPoint()) + ", playhead " +
                std::to_string(sequence.CurrentTimeIndicator()));
    for (const TrackPointer &track : TracksOf(sequence)) {
        output.Line("\nTrack " + Quoted(track->Name()) + "  " + TrackTypeName(track->Type()) + ", " +
                    Counted(track->Objects().Count(), "object"));
        output.Line("    start      end  length  at");
        for (const Stretch &stretch : StretchesOf(sequence, *track))
            WriteStretchText(project, stretch, output);
    }
}

void WriteTransitionJson(JsonWriter &json, const char *key, const TransitionPointer &transition)
{
    json.Key(key);
    if (!transition) {
        json.Null();
        return;
    }
    json.BeginObject().Member("id", transition->ID()).Member("name", TransitionName(*transition));
    json.Reference("from", transition->FromObject()).Reference("to", transition->ToObject());
    json.Member("length", transition->Length())
        .Member("relative_start", transition->RelativeStartFrame())
        .EndObject();
}

JsonWriter BeginOnTrack(const char *kind, const AbstractSequenceTrack &track)
{
    JsonWriter json = BeginJson(kind);
    json.Member("track", track.ID()).Member("track_name", track.Name());
    return json;
}

void WriteStretchJson(const AbstractSequenceTrack &track, const Stretch &stretch, Output &output)
{
    JsonWriter json = BeginOnTrack(stretch.object ? "object" : "gap", track);
    json.Member("start", static_cast<int>(stretch.start)).Member("end", static_cast<int>(stretch.end));
    if (const ObjectPointer &object = stretch.object) {
        json.Member("id", object->ID())
            .Member("name", object->Name())
            .Member("asset", object->AssetID())
            .Member("asset_start", object->AssetInstanceStart())
            .Member("overlaps", stretch.overlaps)
            .Reference("linked", object->LinkedObjectID());
        WriteTransitionJson(json, "incoming", object->IncomingTransition());
        WriteTransitionJson(json, "outgoing", object->OutgoingTransition());
    }
    EndJson(json, output);
}

void WriteTableJson(const Project &project, Output &output)
{
    const EditorSequence &sequence = *project.Sequence();
    JsonWriter json = BeginJson("sequence");
    json.Member("id", sequence.ID())
        .Member("name", sequence.Name())
        .Member("frame_rate", sequence.Settings().FrameRate())
        .Member("frames", sequence.Settings().FrameCount())
        .Member("in", sequence.InPoint())
        .Member("out", sequence.OutPoint())
        .Member("playhead", sequence.CurrentTimeIndicator());
    EndJson(json, output);
    for (const TrackPointer &track : TracksOf(sequence)) {
        JsonWriter line = BeginJson("track");
        line.Member("id", track->ID())
            .Member("name", track->Name())
            .Member("type", TrackTypeName(track->Type()))
            .Member("objects", track->Objects().Count());
        EndJson(line, output);
        for (const Stretch &stretch : StretchesOf(sequence, *track))
            WriteStretchJson(*track, stretch, output);
    }
}

/// What a track has on and around a frame.
struct Moment {
    ObjectPointer shown;
    ObjectPointer previous;
    ObjectPointer next;
    TransitionPointer transition; ///< that runs on the frame
};

Moment MomentOf(const AbstractSequenceTrack &track, int frame)
{
    Moment moment;
    moment.shown = track.Objects().FindOnFrame(frame);
    track.Objects().FindAdjacentObjects(frame, moment.previous, moment.next, nullptr);
    if (!moment.shown)
        return moment;
    const AbstractSequenceObject &object = *moment.shown;
    if (frame < object.StartFrame() + FramesIntoHead(object))
        moment.transition = object.IncomingTransition();
    else if (frame >= object.EndFrame() - FramesIntoTail(object))
        moment.transition = object.OutgoingTransition();
    return moment;
}

long long FrameInside(const AbstractSequenceObject &object, int frame)
{
    return static_cast<long long>(frame) - object.StartFrame();
}

void WriteMomentText(const EditorSequence &sequence, const AbstractSequenceTrack &track, int frame,
                     Output &output)
{
    const Moment moment = MomentOf(track, frame);
    std::string text = "  " + Quoted(track.Name()) + ": ";
    if (const ObjectPointer &shown = moment.shown) {
        const long long inside = FrameInside(*shown, frame);
        text += Quoted(shown->Name()) + ", frame " + std::to_string(inside) + " of " +
                std::to_string(shown->Length());
        if (HasFrames(shown->AssetType()))
            text += ", the asset's " + std::to_string(shown->AssetInstanceStart() + inside);
    } else {
        text += "nothing";
    }
    output.Line(text);
    if (moment.transition)
        output.Line("      in " + TransitionText(sequence, *moment.transition));
    if (moment.previous)
        output.Line("      behind " + Quoted(moment.previous->Name()) + ", which ends on " +
                    std::to_string(moment.previous->EndFrame()));
    if (moment.next)
        output.Line("      before " + Quoted(moment.next->Name()) + ", which starts on " +
                    std::to_string(moment.next->StartFrame()));
}

void WriteMomentJson(const AbstractSequenceTrack &track, int frame, Output &output)
{
    const Moment moment = MomentOf(track, frame);
    const auto id = [](const ObjectPointer &object) { return object ? object->ID() : kytl::KyID(); };
    JsonWriter json = BeginOnTrack("shown", track);
    json.Reference("object", id(moment.shown));
    if (moment.shown)
        json.Member("name", moment.shown->Name())
            .Member("frame_of_object", static_cast<int>(FrameInside(*moment.shown, frame)));
    WriteTransitionJson(json, "transition", moment.transition);
    json.Reference("previous", id(moment.previous)).Reference("next", id(moment.next));
    EndJson(json, output);
}

/// The frames of the sequence, and of what lies outside of them.
void RequireFrame(const EditorSequence &sequence, int frame)
{
    int first = 0;
    int end = sequence.Settings().FrameCount();
    for (const ObjectPointer &object : ObjectsOf(sequence)) {
        first = std::min(first, object->StartFrame());
        end = std::max(end, object->EndFrame());
    }
    if (frame < first || frame >= end)
        throw Failure("Frame " + std::to_string(frame) + " is not in the sequence, which has frames " +
                      std::to_string(first) + " to " + std::to_string(end - 1));
}

void WriteFrame(const EditorSequence &sequence, int frame, bool json, Output &output)
{
    RequireFrame(sequence, frame);
    const int before = sequence.PreviousEdit(frame);
    const int after = sequence.NextEdit(frame);
    if (json) {
        JsonWriter line = BeginJson("frame");
        line.Member("frame", frame).Member("previous_edit", before).Member("next_edit", after);
        EndJson(line, output);
    } else {
        output.Line("Frame " + std::to_string(frame) + "  " + Time(sequence, frame) + ", edit before it at " +
                    std::to_string(before) + ", after it at " + std::to_string(after));
    }
    for (const TrackPointer &track : TracksOf(sequence)) {
        if (json)
            WriteMomentJson(*track, frame, output);
        else
            WriteMomentText(sequence, *track, frame, output);
    }
}

/// Problems of tracks and of what is on them.
void TellOfProblems(const Project &project, const std::string &file)
{
    std::unordered_set<kytl::KyID> tracks;
    for (const TrackPointer &track : TracksOf(*project.Sequence()))
        tracks.insert(track->ID());
    for (const Finding &finding : CheckProject(project))
        if (finding.severity != Finding::Severity::Note && !finding.ids.empty() &&
            tracks.count(finding.ids.back()) > 0)
            Warn(file, finding.place + ": " + finding.what);
}

void Run(const Arguments &arguments, Output &output)
{
    const bool atFrame = arguments.Has("--at");
    const int frame = atFrame ? arguments.Integer("--at") : 0;
    const ProjectPointer project = ReadProject(arguments.Operand(0));
    const SequencePointer sequence = SequenceOf(*project);
    TellOfProblems(*project, arguments.Operand(0));
    if (arguments.Has("--svg"))
        WriteFile(arguments.NewPath("--svg"), TimelinePicture(*project));
    const bool json = arguments.Has("--json");
    if (atFrame)
        WriteFrame(*sequence, frame, json, output);
    else if (json)
        WriteTableJson(*project, output);
    else
        WriteTableText(*project, output);
}

} // namespace

const CommandSpec &TimelineCommand()
{
    static const CommandSpec command{
        "timeline",
        "the tracks of the sequence in time order",
        "FILE [--at F] [--svg OUT.svg] [--json]",
        1,
        1,
        {{"--at", "F", "what each track shows on that frame, and what is around it, in place of the table"},
         {"--svg", "OUT.svg", "draws the tracks to scale as well"},
         {"--json", "", "one JSON object a line"}},
        Run,
        "timeline examples/cut.xml --at 100"};
    return command;
}

} // namespace marlet::tool
