#include "Bindings.h"
#include "Handles.h"
#include "Listing.h"
#include "Values.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/operations/sequence/Timeline.h>

namespace marlet::python
{

void BindTracks(py::module_ &module)
{
    using ObjectPointer = std::shared_ptr<AbstractSequenceObject>;
    py::class_<TrackHandle> type(module, "Track", "A lane of the sequence.");
    BindIdentity<TrackHandle>(type);
    BindFact<TrackHandle>(
        type, "id", [](const AbstractSequenceTrack &track) { return track.ID().ToNarrowString(); },
        "The text of its ID.");
    BindFact<TrackHandle>(
        type, "type",
        [](const AbstractSequenceTrack &track) {
            return track.Type() == TrackType::Video ? "video" : "audio";
        },
        "'video' or 'audio'.");
    BindField<TrackHandle>(
        type, "name", u"Rename track", [](const AbstractSequenceTrack &track) { return track.Name(); },
        [](AbstractSequenceTrack &track, const WideString &name) { track.SetName(name); }, "Its name.");
    type.def_property_readonly(
        "objects",
        [](const TrackHandle &track) {
            track.Get();
            return MakeListing<AbstractSequenceObject>(
                [track] { return ObjectsOf(*track.Get()); },
                [document = track.Owner()](const ObjectPointer &object) { return Show(document, object); });
        },
        "What is on it, by time.");
    type.def(
        "object_at",
        [](const TrackHandle &track, int frame) {
            return Show(track.Owner(), std::as_const(*track.Get()).Objects().FindOnFrame(frame));
        },
        py::arg("frame"), "The object on a frame, or None.");
    type.def("__repr__", [](const TrackHandle &track) {
        return "<marlet.Track " +
               (track.IsThere() ? std::string(py::repr(py::cast(track.Get()->Name()))) : "that is gone") +
               ">";
    });

    py::class_<VideoTrackHandle, TrackHandle> video(module, "VideoTrack", "A track of pictures.");
    BindField<VideoTrackHandle>(
        video, "visible", u"Set visibility", [](const VideoTrack &track) { return track.IsVisible(); },
        [](VideoTrack &track, bool visible) { track.SetVisible(visible); }, "Whether it is shown.");
    py::class_<AudioTrackHandle, TrackHandle> audio(module, "AudioTrack", "A track of sound.");
    BindField<AudioTrackHandle>(
        audio, "muted", u"Mute track", [](const AudioTrack &track) { return track.IsMuted(); },
        [](AudioTrack &track, bool muted) { track.SetMuted(muted); }, "Whether it is off.");
    BindField<AudioTrackHandle>(
        audio, "level", u"Change level", [](const AudioTrack &track) { return track.Level(); },
        [](AudioTrack &track, float level) { track.SetLevel(level); }, "How loud it is.");
}

} // namespace marlet::python
