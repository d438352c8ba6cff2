#include "TrackerRun.h"
#include "document/MediaSource.h"
#include "options/Arguments.h"
#include "options/Interruption.h"
#include "output/Failure.h"
#include "output/Json.h"
#include "output/Output.h"
#include "output/ProgressBar.h"
#include "output/TextFile.h"
#include "samples/ClipProject.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <initializer_list>
#include <utility>

namespace marlet::tool
{

using namespace project;

namespace
{

using Tracking = TrackingActiveObject;

struct FinishName {
    const char *json;
    const char *text;
};

const FinishName &NameOf(Tracking::FinishReason reason)
{
    static constexpr FinishName kNames[] = {{"Stopped", "stopped"},
                                            {"FrameDone", "frame done"},
                                            {"LayerEndReached", "end of the layer reached"},
                                            {"TargetLost", "target lost"},
                                            {"FrameUnavailable", "no frame to be had"}};
    return kNames[static_cast<int>(reason)];
}

Tracker::TrackerMethod MethodOption(const Arguments &arguments)
{
    const std::string &name = arguments.Text("--method");
    if (name == "flow")
        return Tracker::TrackerMethod::OpticalFlow;
    if (name == "template")
        return Tracker::TrackerMethod::TemplateMatching;
    throw UsageError("--method: there is no method \"" + name + "\"");
}

TrackingOptions OptionsOf(const Arguments &arguments)
{
    constexpr int kLastMatchMethod = 5;
    TrackingOptions options;
    if (arguments.Has("--tolerance"))
        options.errorTolerance = arguments.Float("--tolerance");
    if (options.errorTolerance < 0)
        throw UsageError("--tolerance: a difference is not below 0");
    if (arguments.Has("--iterations"))
        options.maxIterations = arguments.Integer("--iterations");
    if (options.maxIterations < 1)
        throw UsageError("--iterations: at least one is needed");
    if (arguments.Has("--match"))
        options.matchMethod = arguments.Integer("--match");
    if (options.matchMethod < 0 || options.matchMethod > kLastMatchMethod)
        throw UsageError("--match: there is no way " + std::to_string(options.matchMethod));
    options.colourMatching = arguments.Has("--colour") ? 1 : 0;
    return options;
}

/// What both ways to call the command have in common.
void TakeOptions(const Arguments &arguments, TrackerJob &job)
{
    if (arguments.Has("--method"))
        job.tracker->SetMethod(MethodOption(arguments));
    job.options = OptionsOf(arguments);
    if (arguments.Has("--backwards"))
        job.direction = Tracking::Direction::Backwards;
    if (arguments.Has("--one-frame"))
        job.duration = Tracking::Duration::OneFrame;
    if (arguments.Has("--from"))
        job.from = arguments.Integer("--from");
    else if (job.direction == Tracking::Direction::Backwards)
        job.from = job.layer->Length() - 1;
    if (job.from < 0 || job.from >= job.layer->Length())
        throw OutsideOfLayer(job);
}

void WriteKeyFrame(TrackingPoint &point, int time, const Tracking::Point &position)
{
    point.Animation().KeyFrames("featurePosition").Set(time, position);
}

void WriteKeyFrames(const TrackerJob &job, const TrackedFrame &tracked)
{
    const int time = job.layer->LayerFrameToRelativeTime(tracked.frame, std::as_const(*job.project).Assets());
    WriteKeyFrame(*job.tracker->PrimaryTrackingPoint(), time, tracked.primary);
    if (job.tracker->Type() == Tracker::TrackerType::TwoPoints)
        WriteKeyFrame(*job.tracker->SecondaryTrackingPoint(), time, tracked.secondary);
}

std::string PositionText(const Tracker &tracker, const TrackedFrame &tracked)
{
    std::string text = "frame " + std::to_string(tracked.frame) + "  " + NumberText(tracked.primary.X) + "," +
                       NumberText(tracked.primary.Y);
    if (tracker.Type() == Tracker::TrackerType::TwoPoints)
        text += "  " + NumberText(tracked.secondary.X) + "," + NumberText(tracked.secondary.Y);
    return text;
}

std::string PositionJson(const Tracker &tracker, const TrackedFrame &tracked)
{
    JsonWriter json;
    json.BeginObject()
        .Member("frame", tracked.frame)
        .Member("x", tracked.primary.X)
        .Member("y", tracked.primary.Y);
    if (tracker.Type() == Tracker::TrackerType::TwoPoints)
        json.Member("x2", tracked.secondary.X).Member("y2", tracked.secondary.Y);
    return json.EndObject().Text();
}

/// Runs the job and tells of it. What becomes of a position beside that is up to the caller.
Tracking::FinishReason Track(const TrackerJob &job, bool json, Output &output,
                             const Interruption &interruption,
                             const std::function<void(const TrackedFrame &)> &onFrame)
{
    ProgressBar bar(FramesToDo(job));
    int positions = 0;
    const Tracking::FinishReason reason = RunTracker(
        job,
        [&](const TrackedFrame &tracked) {
            onFrame(tracked);
            bar.Hide();
            output.Line((json ? PositionJson : PositionText)(*job.tracker, tracked));
            output.Flush();
            bar.Show(positions++);
        },
        [&] { return interruption.Requested(); });
    bar.Tell(NameOf(reason).text);
    return reason;
}

void TellOfFinish(Tracking::FinishReason reason, bool json, Output &output)
{
    if (json)
        output.Line(JsonWriter().BeginObject().Member("finish", NameOf(reason).json).EndObject().Text());
    else
        output.Line(NameOf(reason).text);
    output.Flush();
}

/// The rectangles of a run are those at the playhead.
void MovePlayhead(const CompositionPointer &composition, const TrackerJob &job)
{
    composition->SetCurrentTimeIndicator(job.layer->StartFrame() + job.from);
}

void AnnounceRun(Edit &edit, const CompositionPointer &composition, const TrackerPointer &tracker)
{
    edit.Touch(composition);
    edit.Touch(tracker);
    edit.Touch(tracker->PrimaryTrackingPoint(), "featurePosition");
    edit.Touch(tracker->SecondaryTrackingPoint(), "featurePosition");
}

void RequirePoints(const Tracker &tracker)
{
    if (!tracker.PrimaryTrackingPoint() || !tracker.SecondaryTrackingPoint())
        throw Failure("Tracker " + Quoted(tracker.Name()) + " lacks a tracking point");
}

void RefuseOptions(const Arguments &arguments, std::initializer_list<const char *> options,
                   const std::string &place)
{
    for (const char *option : options)
        if (arguments.Has(option))
            throw UsageError(std::string(option) + " goes with " + place);
}

void TrackInProject(const Arguments &arguments, Output &output)
{
    RefuseOptions(arguments, {"--feature", "--search", "--sequence"}, "--at");
    if (arguments.Operands().size() < 2)
        throw UsageError("either OUT or --at is missing");
    const std::string &out = arguments.Operand(1);
    const std::string &compositionName = arguments.Text("--composition");
    const std::string &layerName = arguments.Text("--layer");
    const std::string &trackerName = arguments.Text("--tracker");

    TrackerJob job;
    job.project = ReadProject(arguments.Operand(0));
    const CompositionPointer composition = FindComposition(*job.project, compositionName);
    job.layer = FindAssetLayer(*composition, layerName);
    job.tracker = FindTracker(*job.layer, trackerName);
    RequirePoints(*job.tracker);
    Edit edit(job.project, u"Track");
    AnnounceRun(edit, composition, job.tracker);
    TakeOptions(arguments, job);
    MovePlayhead(composition, job);
    RequireWritable(out);
    const bool json = arguments.Has("--json");
    // Asked for once or more, it does not keep from saving either.
    const Interruption interruption;
    const auto reason = Track(job, json, output, interruption,
                              [&](const TrackedFrame &tracked) { WriteKeyFrames(job, tracked); });
    edit.Commit();
    WriteProject(*job.project, out);
    TellOfFinish(reason, json, output);
}

void TrackInClip(const Arguments &arguments, Output &output)
{
    RefuseOptions(arguments, {"--composition", "--layer", "--tracker"}, "PROJECT");
    if (arguments.Operands().size() > 1)
        throw UsageError("--at goes with MEDIA alone");
    const Feature feature = FeatureOption(arguments);
    const MediaSource source = OpenMediaFile(arguments.Operand(0), arguments.Has("--sequence"));
    const ClipProject clip = MakeClipProject(source.project, source.media);
    TrackerJob job;
    job.project = clip.project;
    job.layer = clip.layer;
    job.tracker = AddTracker(*clip.layer, feature);
    TakeOptions(arguments, job);
    MovePlayhead(clip.composition, job);
    const bool json = arguments.Has("--json");
    const Interruption interruption;
    TellOfFinish(Track(job, json, output, interruption, [](const TrackedFrame &) {}), json, output);
}

void Run(const Arguments &arguments, Output &output)
{
    if (arguments.Has("--at"))
        TrackInClip(arguments, output);
    else
        TrackInProject(arguments, output);
}

} // namespace

const CommandSpec &TrackCommand()
{
    static const CommandSpec command{
        "track",
        "follow a feature through a clip, and keep its path as key frames of a tracker",
        "PROJECT OUT --composition C --layer L --tracker T [OPTIONS]\n"
        "MEDIA --at X,Y [--feature N] [--search N] [--sequence] [OPTIONS]",
        1,
        2,
        {{"--composition", "C", "the composition, by ID or name"},
         {"--layer", "L", "the layer, by ID or name"},
         {"--tracker", "T", "the tracker, by ID or name"},
         {"--at", "X,Y", "the feature in the frame to start from, in pixels from the middle, Y up"},
         {"--feature", "N", "the feature's size in pixels; 64 if not given"},
         {"--search", "N", "the size of the area around it where it is looked for; 160 if not given"},
         {"--sequence", "", "MEDIA is a member of an image sequence of 25 frames per second"},
         {"--method", "M", "flow or template; that of the tracker if not given"},
         {"--from", "F", "the first frame, counted from the layer's start"},
         {"--backwards", "", "from there to the start; from the last frame if --from is not given"},
         {"--one-frame", "", "no further than to the next frame"},
         {"--tolerance", "T", "how different the feature may become before it is lost; 0.2 if not given"},
         {"--iterations", "N", "limit of the optical flow; 30 if not given"},
         {"--match", "N", "how templates are compared, 0 to 5; 5 if not given"},
         {"--colour", "", "compare templates in colour"},
         {"--json", "", "one JSON object a line"}},
        Run,
        "track film.xml tracked.xml --composition Main --layer clip --tracker Corner"};
    return command;
}

} // namespace marlet::tool
