#include "Bindings.h"
#include "Handles.h"
#include "Listing.h"
#include "SequenceWords.h"
#include "Settings.h"
#include "Values.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/operations/sequence/SequenceClipboard.h>
#include <marlet/operations/sequence/SequencePlacing.h>
#include <marlet/operations/sequence/SequenceRemoval.h>
#include <marlet/operations/sequence/Timeline.h>

namespace marlet::python
{

namespace
{

using Type = py::class_<SequenceHandle>;
using TrackPointer = std::shared_ptr<AbstractSequenceTrack>;
using ObjectPointer = std::shared_ptr<AbstractSequenceObject>;

const Words<TrackType> kTrackTypes{{TrackType::Video, "video"}, {TrackType::Audio, "audio"}};

void BindLists(Type &type)
{
    const auto tracks = [](const SequenceHandle &sequence, std::optional<TrackType> wanted) {
        sequence.Get();
        return MakeListing<AbstractSequenceTrack>(
            [sequence, wanted] {
                std::vector<TrackPointer> found = TracksOf(*sequence.Get());
                std::erase_if(found,
                              [&](const TrackPointer &track) { return wanted && track->Type() != *wanted; });
                return found;
            },
            [document = sequence.Owner()](const TrackPointer &track) { return Show(document, track); });
    };
    type.def_property_readonly(
        "tracks", [tracks](const SequenceHandle &sequence) { return tracks(sequence, std::nullopt); },
        "The video tracks, then the audio tracks.");
    type.def_property_readonly(
        "video_tracks",
        [tracks](const SequenceHandle &sequence) { return tracks(sequence, TrackType::Video); },
        "The tracks of pictures.");
    type.def_property_readonly(
        "audio_tracks",
        [tracks](const SequenceHandle &sequence) { return tracks(sequence, TrackType::Audio); },
        "The tracks of sound.");
    type.def_property_readonly(
        "objects",
        [](const SequenceHandle &sequence) {
            sequence.Get();
            return MakeListing<AbstractSequenceObject>(
                [sequence] { return ObjectsOf(*sequence.Get()); },
                [document = sequence.Owner()](const ObjectPointer &object) {
                    return Show(document, object);
                });
        },
        "What is on the tracks, track by track, each by time.");
}

py::list Place(const SequenceHandle &sequence, const AssetHandle &asset, const TrackHandle &track, int start,
               const TrackHandle *soundTrack, int assetStart, std::optional<int> length,
               const std::string &mode, const Ripple &ripple)
{
    const DocumentPointer &document = sequence.Owner();
    sequence.Get();
    const Placement placement{ObjectFrom(document, asset),
                              ObjectFrom(document, track),
                              ObjectFrom(document, soundTrack),
                              start,
                              assetStart,
                              length};
    return ShowAll(document, Operate(*document, [&](const std::shared_ptr<Project> &project) {
                       return PlaceAsset(project, placement, kPlaceModes.Find(mode),
                                         RippleFrom(document, ripple));
                   }));
}

void BindPlacing(Type &type)
{
    type.def("insert", &Place, py::arg("asset"), py::arg("track"), py::arg("start"), py::kw_only(),
             py::arg("sound_track") = py::none(), py::arg("asset_start") = 0, py::arg("length") = py::none(),
             py::arg("mode") = "free", py::arg("ripple") = py::none(),
             "Puts an asset onto a track at a frame, with its sound onto another one, and returns the new "
             "objects. The mode is 'free' (where nothing is), 'overwrite' or 'insert' (what is there makes "
             "room). A ripple names the tracks on which what lies behind moves along: a list, 'all', or "
             "None.");
    type.def(
        "add_track",
        [](const SequenceHandle &sequence, const std::string &kind, const WideString &name) {
            sequence.Get();
            return Show(sequence.Owner(),
                        Operate(*sequence.Owner(), [&](const std::shared_ptr<Project> &project) {
                            return AddTrack(project, kTrackTypes.Find(kind), name);
                        }));
        },
        py::arg("type"), py::arg("name"),
        "Adds a track, of 'video' or 'audio', behind the others and returns it.");
    type.def(
        "copy",
        [](const SequenceHandle &sequence, const std::vector<ObjectHandle> &objects, bool withPartners) {
            return CopiedObjects(sequence.InProject(), ObjectsFrom(sequence.Owner(), objects),
                                 withPartners ? Partner::GoesAlong : Partner::Stays);
        },
        py::arg("objects"), py::kw_only(), py::arg("with_partners") = true, "Copies objects, to be pasted.");
    type.def(
        "paste",
        [](const SequenceHandle &sequence, const CopiedObjects &copied, int start, const TrackHandle *video,
           const TrackHandle *audio, const std::string &mode, const Ripple &ripple) {
            const DocumentPointer &document = sequence.Owner();
            return ShowAll(document, Operate(*document, [&](const std::shared_ptr<Project> &project) {
                               return copied.Paste(project, start, ObjectFrom(document, video),
                                                   ObjectFrom(document, audio), kPlaceModes.Find(mode),
                                                   RippleFrom(document, ripple));
                           }));
        },
        py::arg("copied"), py::arg("start"), py::kw_only(), py::arg("video_track") = py::none(),
        py::arg("audio_track") = py::none(), py::arg("mode") = "free", py::arg("ripple") = py::none(),
        "Adds copies, the first at a frame, and returns them.");
}

void BindRemoving(Type &type)
{
    const auto tracks = py::arg("tracks") = "all";
    type.def(
        "lift",
        [](const SequenceHandle &sequence, int start, int end, const Ripple &chosen) {
            sequence.Get();
            Operate(*sequence.Owner(), [&](const auto &project) {
                LiftFrames(project, start, end, RippleFrom(sequence.Owner(), chosen));
            });
        },
        py::arg("start"), py::arg("end"), tracks, "Leaves these frames of tracks empty.");
    type.def(
        "extract",
        [](const SequenceHandle &sequence, int start, int end, const Ripple &chosen) {
            sequence.Get();
            Operate(*sequence.Owner(), [&](const auto &project) {
                ExtractFrames(project, start, end, RippleFrom(sequence.Owner(), chosen));
            });
        },
        py::arg("start"), py::arg("end"), tracks, "Takes these frames out; what lies behind moves up.");
    type.def(
        "close_gaps",
        [](const SequenceHandle &sequence, const Ripple &chosen) {
            sequence.Get();
            return Operate(*sequence.Owner(), [&](const std::shared_ptr<Project> &project) {
                return CloseGaps(project, RippleFrom(sequence.Owner(), chosen));
            });
        },
        tracks,
        "Moves up what lies behind frames in which none of the tracks has anything. Returns how many went.");
}

} // namespace

TrackChoice RippleFrom(const DocumentPointer &document, const Ripple &ripple)
{
    if (!ripple)
        return TrackChoice::None();
    if (const auto *const word = std::get_if<std::string>(&*ripple)) {
        if (*word != "all")
            throw py::value_error("Tracks are a list of tracks or 'all', not '" + *word + "'");
        return TrackChoice::All();
    }
    return TrackChoice::Of(ObjectsFrom(document, std::get<std::vector<TrackHandle>>(*ripple)));
}

void BindSequence(py::module_ &module)
{
    py::class_<CopiedObjects>(module, "CopiedObjects", "Copies of objects of the sequence.")
        .def("__len__", &CopiedObjects::Count)
        .def_property_readonly("length", &CopiedObjects::Length,
                               "In frames, from the first start to the last end.");
    Type type(module, "Sequence",
              "The editor timeline of a project: tracks with objects. Frames are of the sequence.");
    BindIdentity<SequenceHandle>(type);
    BindFact<SequenceHandle>(
        type, "id", [](const EditorSequence &sequence) { return sequence.ID().ToNarrowString(); },
        "The text of its ID.");
    BindField<SequenceHandle>(
        type, "name", u"Rename sequence", [](const EditorSequence &sequence) { return sequence.Name(); },
        [](EditorSequence &sequence, const WideString &name) { sequence.SetName(name); }, "Its name.");
    type.def_property_readonly(
        "settings", [](const SequenceHandle &sequence) { return SettingsOf(sequence); }, "Its format.");
    BindLists(type);
    BindPlacing(type);
    BindRemoving(type);
}

} // namespace marlet::python
