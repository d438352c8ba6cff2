#include "InfoSequence.h"

#include "InfoParts.h"
#include "document/Timeline.h"
#include "output/Names.h"
#include "output/Output.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/PanelRenderState.h>
#include <marlet/project/Project.h>

namespace marlet::tool
{

using namespace project;

namespace
{

/// Without those that the library stores as they are.
std::string StateText(const EditorSequence &sequence)
{
    return "work area " + std::to_string(sequence.InPoint()) + " to " + std::to_string(sequence.OutPoint()) +
           ", playhead " + std::to_string(sequence.CurrentTimeIndicator()) + ", zoom " +
           NumberText(sequence.TimelineZoom()) + ", time format " +
           std::to_string(static_cast<int>(sequence.TimelineTimeFormat())) + ", snap mode " +
           std::to_string(static_cast<int>(sequence.TimelineSnapMode())) + ", preview size " +
           std::to_string(static_cast<int>(sequence.SequenceTrackPreviewSize())) + " and mode " +
           std::to_string(static_cast<int>(sequence.SequenceTrackPreviewMode()));
}

std::string TrackText(const AbstractSequenceTrack &track)
{
    std::string text = "Track " + Quoted(track.Name()) + "  " + TrackTypeName(track.Type());
    if (const auto *video = dynamic_cast<const VideoTrack *>(&track))
        text += video->IsVisible() ? "" : ", hidden";
    else if (const auto *audio = dynamic_cast<const AudioTrack *>(&track))
        text += ", level " + NumberText(audio->Level()) + (audio->IsMuted() ? ", muted" : "");
    return text + ", " + Counted(track.Objects().Count(), "object");
}

std::string LinkText(const EditorSequence &sequence, const AbstractSequenceObject &object)
{
    const kytl::KyID &link = object.LinkedObjectID();
    if (link.IsNull())
        return "";
    const ObjectPointer partner = sequence.FindObjectByID(link);
    const TrackPointer track = partner ? sequence.FindSequenceTrackByID(partner->ParentTrackID()) : nullptr;
    return ", linked to " + ObjectName(sequence, link) + (track ? " of track " + Quoted(track->Name()) : "") +
           (partner && !AreLinked(object, *partner) ? " (which is not linked to it)" : "");
}

std::string ObjectText(const Project &project, const AbstractSequenceObject &object, std::size_t position)
{
    const auto asset = object.Asset(project.Assets());
    std::string text = "  " + PadLeft(std::to_string(position), 3) + "  " + Quoted(object.Name()) +
                       "  frames " + std::to_string(object.StartFrame()) + " to " +
                       std::to_string(object.EndFrame()) + ", of " + AssetTypeName(object.AssetType()) + " " +
                       (asset ? Quoted(asset->Name()) + (asset->IsOffline() ? " (offline)" : "")
                              : object.AssetID().ToNarrowString() + " (not there)") +
                       " from " + std::to_string(object.AssetInstanceStart());
    if (object.Speed() != 1)
        text += ", speed " + NumberText(object.Speed());
    const auto *sound = dynamic_cast<const AudioObject *>(&object);
    if (sound && sound->IsMuted())
        text += ", muted";
    return text + LinkText(*project.Sequence(), object);
}

void WriteTransition(const EditorSequence &sequence, const Transition &transition, Output &output)
{
    const auto plugin = transition.Plugin();
    output.Line(kLayerIndent + ("transition " + TransitionName(transition)) +
                (plugin ? " " + VersionText(plugin->Version()) : "") + "  " +
                TransitionEnds(sequence, transition) + ", " + std::to_string(transition.Length()) +
                " frames from " + std::to_string(transition.RelativeStartFrame()));
    WritePropertiesText(transition.Properties(), std::string(kLayerIndent) + "  ", output);
}

/// A shared transition stands with the object before the cut, which owns it in the file.
bool StandsWithTheOneBefore(const Transition &incoming)
{
    return !incoming.FromObject().IsNull();
}

void WriteObject(const Project &project, const AbstractSequenceObject &object, std::size_t position,
                 Output &output)
{
    const EditorSequence &sequence = *project.Sequence();
    output.Line(ObjectText(project, object, position));
    WritePropertiesText(object.Properties(), kLayerIndent, output);
    for (const auto &effect : object.Effects())
        WriteEffectText(*effect, output);
    if (const auto &incoming = object.IncomingTransition(); incoming && !StandsWithTheOneBefore(*incoming))
        WriteTransition(sequence, *incoming, output);
    if (object.OutgoingTransition())
        WriteTransition(sequence, *object.OutgoingTransition(), output);
}

void WriteTransitionJson(const AbstractSequenceObject &object, const Transition &transition, Output &output)
{
    const auto plugin = transition.Plugin();
    JsonWriter json = BeginJson("transition");
    json.Member("object", object.ID())
        .Member("id", transition.ID())
        .Member("plugin", transition.PluginID())
        .Member("plugin_name", TransitionName(transition));
    if (plugin)
        json.Member("plugin_version", VersionText(plugin->Version()));
    json.Reference("from", transition.FromObject()).Reference("to", transition.ToObject());
    json.Member("length", transition.Length()).Member("relative_start", transition.RelativeStartFrame());
    EndJson(json, output);
    WritePropertiesJson("transition", transition.ID(), transition.Properties(), output);
}

void WriteObjectJson(const Project &project, const AbstractSequenceTrack &track,
                     const AbstractSequenceObject &object, Output &output)
{
    const auto asset = object.Asset(project.Assets());
    JsonWriter json = BeginJson("object");
    json.Member("track", track.ID())
        .Member("id", object.ID())
        .Member("name", object.Name())
        .Member("start", object.StartFrame())
        .Member("end", object.EndFrame())
        .Member("asset", object.AssetID())
        .Member("asset_type", AssetTypeName(object.AssetType()))
        .Member("asset_there", asset != nullptr)
        .Member("offline", asset && asset->IsOffline())
        .Member("asset_start", object.AssetInstanceStart())
        .Member("asset_end", object.AssetInstanceEnd())
        .Member("speed", object.Speed())
        .Reference("linked", object.LinkedObjectID());
    if (const auto *sound = dynamic_cast<const AudioObject *>(&object))
        json.Member("muted", sound->IsMuted());
    EndJson(json, output);
    WritePropertiesJson("object", object.ID(), object.Properties(), output);
    for (const auto &effect : object.Effects())
        WriteEffectJson("object", object.ID(), *effect, output);
    if (const auto &incoming = object.IncomingTransition(); incoming && !StandsWithTheOneBefore(*incoming))
        WriteTransitionJson(object, *incoming, output);
    if (object.OutgoingTransition())
        WriteTransitionJson(object, *object.OutgoingTransition(), output);
}

void WriteTrackJson(const AbstractSequenceTrack &track, Output &output)
{
    JsonWriter json = BeginJson("sequence_track");
    json.Member("id", track.ID()).Member("name", track.Name()).Member("type", TrackTypeName(track.Type()));
    if (const auto *video = dynamic_cast<const VideoTrack *>(&track))
        json.Member("visible", video->IsVisible());
    else if (const auto *audio = dynamic_cast<const AudioTrack *>(&track))
        json.Member("muted", audio->IsMuted()).Member("level", audio->Level());
    json.Member("objects", track.Objects().Count());
    EndJson(json, output);
}

} // namespace

void WriteSequenceText(const Project &project, Output &output)
{
    const EditorSequence &sequence = *project.Sequence();
    output.Line("\nSequence " + Quoted(sequence.Name()) + "  " + sequence.ID().ToNarrowString());
    output.Line("  " + FormatText(sequence.Settings()));
    output.Line("  " + StateText(sequence));
    WritePanelText("viewer panel", sequence.ViewerPanelState(), output);
    for (const TrackPointer &track : TracksOf(sequence)) {
        output.Line("  " + TrackText(*track));
        std::size_t position = 0;
        for (const ObjectPointer &object : ObjectsOf(*track))
            WriteObject(project, *object, ++position, output);
    }
}

void WriteSequenceJson(const Project &project, Output &output)
{
    const EditorSequence &sequence = *project.Sequence();
    JsonWriter json = BeginJson("sequence");
    json.Member("id", sequence.ID()).Member("name", sequence.Name());
    WriteFormatJson(json, sequence.Settings());
    json.Member("in", sequence.InPoint())
        .Member("out", sequence.OutPoint())
        .Member("playhead", sequence.CurrentTimeIndicator())
        .Member("zoom", sequence.TimelineZoom())
        .Member("time_format", static_cast<int>(sequence.TimelineTimeFormat()))
        .Member("snap_mode", static_cast<int>(sequence.TimelineSnapMode()))
        .Member("preview_size", static_cast<int>(sequence.SequenceTrackPreviewSize()))
        .Member("preview_mode", static_cast<int>(sequence.SequenceTrackPreviewMode()));
    EndJson(json, output);
    WritePanelJson("sequence", sequence.ID(), "viewer", sequence.ViewerPanelState(), output);
    for (const TrackPointer &track : TracksOf(sequence)) {
        WriteTrackJson(*track, output);
        for (const ObjectPointer &object : ObjectsOf(*track))
            WriteObjectJson(project, *track, *object, output);
    }
}

} // namespace marlet::tool
