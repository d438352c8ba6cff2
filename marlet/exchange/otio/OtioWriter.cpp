#include <marlet/exchange/otio/OtioWriter.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/otio/OtioClips.h>
#include <marlet/exchange/otio/OtioKept.h>
#include <marlet/exchange/otio/OtioTransitions.h>
#include <marlet/operations/OperationException.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

constexpr int kVersion = 1;
constexpr char kDissolve[] = "SMPTE_Dissolve";
constexpr char kOtherTransition[] = "Custom_Transition";

Json Own(const char *what, NarrowString piece)
{
    return {{kOwnKey, {{what, std::move(piece)}}}};
}

class OtioWriting
{
public:
    OtioWriting(const Project &project, const EditorSequence &sequence, const ExchangeOptions &options)
        : project_(project),
          sequence_(sequence),
          options_(options),
          clock_(sequence.Settings().FrameRate()),
          pieces_(project, options.folder),
          kept_(project),
          clips_(project, kept_, options)
    {
    }

    NarrowString Run()
    {
        Json stack = {{"OTIO_SCHEMA", "Stack.1"}, {"metadata", Json::object()}, {"name", "tracks"},
                      {"source_range", nullptr},  {"effects", Json::array()},   {"markers", Json::array()},
                      {"enabled", true},          {"children", Json::array()}};
        AddTracks(sequence_.VideoTracks(), "Video", stack["children"]);
        AddTracks(sequence_.AudioTracks(), "Audio", stack["children"]);
        AddForeignPart(stack, kept_.Of(sequence_.ID(), kKeptStack));

        Json timeline = {{"OTIO_SCHEMA", "Timeline.1"},
                         {"metadata", Own("project", pieces_.TextWithoutTracks(OtioKept::TextIn(project_)))},
                         {"name", ToUtf8(sequence_.Name())},
                         {"global_start_time", nullptr},
                         {"tracks", std::move(stack)}};
        Json &own = timeline["metadata"][kOwnKey];
        own["version"] = kVersion;
        own["end"] = end_;
        AddForeignPart(timeline, kept_.Of(sequence_.ID(), kKeptItem));
        return JsonTextOf(timeline) + "\n";
    }

private:
    template <class List> void AddTracks(const List &tracks, const char *list, Json &children)
    {
        const std::vector<TextElement> elements = pieces_.Tracks(list);
        auto element = elements.begin();
        for (const auto &track : tracks)
            if (track && element != elements.end())
                children.push_back(Track(*track, *element++));
    }

    Json Track(const SequenceTrack &track, const TextElement &element)
    {
        Json json = {{"OTIO_SCHEMA", "Track.1"},
                     {"metadata", Own("track", ProjectPieces::TextWithoutObjects(element))},
                     {"name", ToUtf8(track.Name())},
                     {"source_range", nullptr},
                     {"effects", Json::array()},
                     {"markers", Json::array()},
                     {"enabled", IsOn(track)},
                     {"children", Children(track, element)},
                     {"kind", track.Type() == TrackType::Video ? "Video" : "Audio"}};
        AddForeignPart(json, kept_.Of(track.ID(), kKeptItem));
        return json;
    }

    bool IsOn(const SequenceTrack &track) const
    {
        const auto *audio = dynamic_cast<const AudioTrack *>(&track);
        if (audio && audio->Level() != 0)
            TellKept(options_, "the level of track \"" + ToUtf8(track.Name()) + "\"");
        return audio ? !audio->IsMuted() : static_cast<const VideoTrack &>(track).IsVisible();
    }

    /// The objects that stand in the text of the track, side by side with their elements.
    std::vector<OtioObject> ObjectsOf(const SequenceTrack &track, const TextElement &element) const
    {
        const std::vector<TextElement> elements = ProjectPieces::ObjectsOf(element);
        std::vector<OtioObject> objects;
        track.Objects().ForEach([&](const std::shared_ptr<const AbstractSequenceObject> &entry) {
            const bool isOfTrack = track.Type() == TrackType::Video
                                       ? dynamic_cast<const VisualObject *>(entry.get()) != nullptr
                                       : dynamic_cast<const AudioObject *>(entry.get()) != nullptr;
            if (isOfTrack && objects.size() < elements.size())
                objects.push_back(
                    {std::static_pointer_cast<const SequenceObject>(entry), elements[objects.size()]});
        });
        return objects;
    }

    Json Children(const SequenceTrack &track, const TextElement &element)
    {
        const std::vector<OtioObject> objects = ObjectsOf(track, element);
        const std::vector<OtioCuts> cuts = CutsOf(objects);
        Json children = Json::array();
        int frame = 0;
        for (std::size_t i = 0; i < objects.size(); ++i) {
            const SequenceObject &object = *objects[i].object;
            if (object.StartFrame() > frame)
                children.push_back(Gap(track.ID(), frame, object.StartFrame()));
            if (cuts[i].head.transition)
                children.push_back(TransitionAt(cuts[i].head));
            children.push_back(clips_.Clip(object, frame, objects[i].element, cuts[i], track.ID()));
            frame = std::max(frame, object.EndFrame());
            end_ = std::max(end_, frame);
            if (cuts[i].tail.transition)
                children.push_back(TransitionAt(cuts[i].tail));
            else if (!object.OutgoingTransition() && i + 1 < objects.size() &&
                     objects[i + 1].object->StartFrame() == frame && !cuts[i + 1].head.transition)
                AddForeignTransition(object.ID(), children);
        }
        return children;
    }

    Json Gap(const kytl::KyID &track, int start, int end) const
    {
        const double length = static_cast<double>(end) - start;
        Json gap = {{"OTIO_SCHEMA", "Gap.1"},
                    {"metadata", Json::object()},
                    {"name", ""},
                    {"source_range", clock_.Range({0, length})},
                    {"effects", Json::array()},
                    {"markers", Json::array()},
                    {"enabled", true}};
        AddForeignPart(gap, MemberOf(kept_.Of(track, kKeptGaps), GapKey(start, end)));
        return gap;
    }

    Json TransitionAt(const OtioCut &cut) const
    {
        const Transition &transition = *cut.transition;
        const double before = -static_cast<double>(transition.RelativeStartFrame());
        const auto plugin = transition.Plugin();
        const Json &kept = kept_.Of(transition.ID(), kKeptItem);
        const bool isDissolve = options_.dissolve && options_.dissolve->ID() == transition.PluginID();
        Json json = {{"OTIO_SCHEMA", "Transition.1"},
                     {"metadata", Own("transition", NarrowString(cut.element.Source()))},
                     {"name", plugin ? ToUtf8(plugin->Name()) : NarrowString()},
                     {"in_offset", clock_.Time(before)},
                     {"out_offset", clock_.Time(transition.Length() - before)},
                     {"transition_type", isDissolve ? kDissolve : kOtherTransition}};
        // What another program calls it.
        for (const char *key : {"name", "transition_type"})
            if (const Json &foreign = MemberOf(kept, key); foreign.is_string()) {
                json[key] = foreign;
                json["metadata"][kOwnKey][kForeignKey] = true;
            }
        AddForeignPart(json, kept);
        return json;
    }

    void AddForeignTransition(const kytl::KyID &before, Json &children) const
    {
        if (const Json &transition = kept_.Of(before, kKeptTransition); transition.is_object())
            children.push_back(transition);
    }

    const Project &project_;
    const EditorSequence &sequence_;
    const ExchangeOptions &options_;
    OtioClock clock_;
    ProjectPieces pieces_;
    OtioKept kept_;
    OtioClips clips_;
    int end_ = 0; ///< of the last object
};

} // namespace

NarrowString WriteOtio(const std::shared_ptr<Project> &project, const ExchangeOptions &options)
{
    const auto sequence = project->Sequence();
    if (!sequence)
        throw OperationException("The project has no sequence");
    const double rate = sequence->Settings().FrameRate();
    if (!(rate > 0 && rate <= kHighestRate))
        throw OperationException("The sequence has no frame rate that a text could name");
    return OtioWriting(*project, *sequence, options).Run();
}

} // namespace marlet::project
