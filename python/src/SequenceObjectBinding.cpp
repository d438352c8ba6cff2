#include "Bindings.h"
#include "Effects.h"
#include "Listing.h"
#include "Owners.h"
#include "SequenceWords.h"
#include "Values.h"

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/operations/sequence/SequenceObjects.h>
#include <marlet/operations/sequence/SequenceRemoval.h>
#include <marlet/operations/sequence/SequenceTransitions.h>
#include <marlet/operations/sequence/SequenceTrimming.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/AssetList.h>

namespace marlet::python
{

namespace
{

using Type = py::class_<ObjectHandle>;
using ProjectPointer = std::shared_ptr<Project>;

void BindFacts(Type &type)
{
    using Object = AbstractSequenceObject;
    BindFact<ObjectHandle>(
        type, "id", [](const Object &object) { return object.ID().ToNarrowString(); }, "The text of its ID.");
    BindFact<ObjectHandle>(
        type, "type",
        [](const Object &object) { return object.Type() == ObjectType::Visual ? "visual" : "audio"; },
        "'visual' or 'audio'.");
    BindField<ObjectHandle>(
        type, "name", u"Rename object", [](const Object &object) { return object.Name(); },
        [](Object &object, const WideString &name) { object.SetName(name); }, "Its name.");
    BindFact<ObjectHandle>(
        type, "start", [](const Object &object) { return object.StartFrame(); },
        "Its first frame in the sequence.");
    BindFact<ObjectHandle>(
        type, "end", [](const Object &object) { return object.EndFrame(); }, "The first frame that is out.");
    BindFact<ObjectHandle>(
        type, "length", [](const Object &object) { return object.Length(); }, "In frames.");
    BindFact<ObjectHandle>(
        type, "asset_start", [](const Object &object) { return object.AssetInstanceStart(); },
        "The first frame of the asset that is used.");
    BindFact<ObjectHandle>(
        type, "speed", [](const Object &object) { return object.Speed(); }, "A factor.");
    BindProperties<ObjectHandle>(type);
}

void BindRelations(Type &type)
{
    type.def_property_readonly(
        "asset",
        [](const ObjectHandle &object) {
            return Show(object.Owner(), object.Get()->Asset(object.InProject()->Assets()));
        },
        "What it shows or plays, or None if that is missing.");
    type.def_property_readonly(
        "track",
        [](const ObjectHandle &object) {
            const auto id = object.Get()->ParentTrackID();
            return Show(object.Owner(), object.InProject()->Sequence()->FindSequenceTrackByID(id));
        },
        "The track that it is on.");
    type.def_property_readonly(
        "partner",
        [](const ObjectHandle &object) {
            const auto shown = object.Get();
            return Show(object.Owner(), PartnerOf(*object.InProject()->Sequence(), *shown));
        },
        "Its sound, or its picture, or None.");
    type.def_property_readonly(
        "incoming",
        [](const ObjectHandle &object) { return Show(object, object.Get()->IncomingTransition()); },
        "The transition at its head, or None.");
    type.def_property_readonly(
        "outgoing",
        [](const ObjectHandle &object) { return Show(object, object.Get()->OutgoingTransition()); },
        "The transition at its tail, or None.");
    type.def_property_readonly(
        "effects",
        [](const ObjectHandle &object) {
            object.Get();
            return MakeListing<EffectInstance>(
                [object] { return std::as_const(*object.Get()).Effects(); },
                [object](const std::shared_ptr<EffectInstance> &effect) { return Show(object, effect); });
        },
        "Its effects, in the order of application.");
}

/// An operation on an object, with what all of them have in common.
template <class Function> auto On(const ObjectHandle &handle, const Function &operation)
{
    const auto object = handle.Get();
    return Operate(*handle.Owner(),
                   [&](const ProjectPointer &project) { return operation(project, object); });
}

void BindMoving(Type &type)
{
    const auto along = py::arg("with_partner") = true;
    type.def(
        "move",
        [](const ObjectHandle &handle, long long start, const TrackHandle *track, bool partner) {
            const auto to = ObjectFrom(handle.Owner(), track);
            On(handle, [&](const auto &project, const auto &object) {
                MoveObject(project, object, start, to, PartnerFrom(partner));
            });
        },
        py::arg("start"), py::kw_only(), py::arg("track") = py::none(), along,
        "Moves it to a frame, and to another track if one is given.");
    type.def(
        "split",
        [](const ObjectHandle &handle, int frame, bool partner) {
            return ShowAll(handle.Owner(), On(handle, [&](const auto &project, const auto &object) {
                               return SplitObject(project, object, frame, PartnerFrom(partner));
                           }));
        },
        py::arg("frame"), py::kw_only(), along,
        "Ends it at a frame, and returns the objects that go on from there.");
    type.def(
        "join",
        [](const ObjectHandle &handle, bool partner) {
            On(handle, [&](const auto &project, const auto &object) {
                JoinObjects(project, object, PartnerFrom(partner));
            });
        },
        py::kw_only(), along, "Takes in the object that goes on where it ends.");
    type.def(
        "link",
        [](const ObjectHandle &handle, const ObjectHandle &partner) {
            const auto other = ObjectFrom(handle.Owner(), partner);
            On(handle, [&](const auto &project, const auto &object) { LinkObjects(project, object, other); });
        },
        py::arg("partner"), "Makes two objects partners.");
    type.def(
        "unlink",
        [](const ObjectHandle &handle) {
            On(handle, [](const auto &project, const auto &object) { UnlinkObject(project, object); });
        },
        "Ends its partnership.");
    type.def(
        "remove",
        [](const ObjectHandle &handle, const Ripple &ripple, bool partner) {
            On(handle, [&](const auto &project, const auto &object) {
                RemoveObject(project, object, PartnerFrom(partner), RippleFrom(handle.Owner(), ripple));
            });
        },
        py::kw_only(), py::arg("ripple") = py::none(), along,
        "Takes it away, and leaves a gap unless there is a ripple: a list of tracks or 'all'.");
}

void BindTrimming(Type &type)
{
    const auto along = py::arg("with_partner") = true;
    const auto ripples = py::arg("ripple") = py::none();
    type.def(
        "trim",
        [](const ObjectHandle &handle, std::optional<long long> start, std::optional<long long> end,
           const Ripple &ripple, bool partner) {
            On(handle, [&](const auto &project, const auto &object) {
                TrimObject(project, object, start.value_or(object->StartFrame()),
                           end.value_or(object->EndFrame()), PartnerFrom(partner),
                           RippleFrom(handle.Owner(), ripple));
            });
        },
        py::arg("start") = py::none(), py::arg("end") = py::none(), py::kw_only(), ripples, along,
        "Gives it other edges. The picture does not move under them.");
    type.def(
        "roll",
        [](const ObjectHandle &handle, const std::string &end, int frame, bool partner) {
            On(handle, [&](const auto &project, const auto &object) {
                RollCut(project, object, kEnds.Find(end), frame, PartnerFrom(partner));
            });
        },
        py::arg("end"), py::arg("frame"), py::kw_only(), along,
        "Moves the cut at its 'head' or 'tail', which it shares with a neighbour.");
    type.def(
        "slip",
        [](const ObjectHandle &handle, int frames, bool partner) {
            On(handle, [&](const auto &project, const auto &object) {
                SlipObject(project, object, frames, PartnerFrom(partner));
            });
        },
        py::arg("frames"), py::kw_only(), along, "Shows frames of the asset that lie so many later.");
    type.def(
        "slide",
        [](const ObjectHandle &handle, int frames, bool partner) {
            On(handle, [&](const auto &project, const auto &object) {
                SlideObject(project, object, frames, PartnerFrom(partner));
            });
        },
        py::arg("frames"), py::kw_only(), along, "Moves it, and trims those that it meets.");
    type.def(
        "set_speed",
        [](const ObjectHandle &handle, double speed, const Ripple &ripple, bool partner) {
            On(handle, [&](const auto &project, const auto &object) {
                SetObjectSpeed(project, object, speed, PartnerFrom(partner),
                               RippleFrom(handle.Owner(), ripple));
            });
        },
        py::arg("speed"), py::kw_only(), ripples, along,
        "Shows the same frames of the asset in fewer or more frames of the sequence.");
}

py::object SetTransitionOf(const ObjectHandle &handle, const std::string &end, const py::object &plugin,
                           std::optional<int> length, bool alone)
{
    const py::object id = py::hasattr(plugin, "id") ? py::object(plugin.attr("id")) : plugin;
    const auto &manager = handle.InProject()->PluginManager();
    const auto found = manager ? manager->FindPlugin(ToID(py::cast<std::string>(id))) : nullptr;
    if (!found)
        throw Failure("OperationError", "There is no such plug-in");
    return Show(handle, On(handle, [&](const auto &project, const auto &object) {
                    return SetTransition(project, object, kEnds.Find(end), found, length,
                                         alone ? Sharing::Alone : Sharing::WithNeighbour);
                }));
}

void BindTransitions(Type &type)
{
    type.def("set_transition", &SetTransitionOf, py::arg("end"), py::arg("plugin"),
             py::arg("length") = py::none(), py::kw_only(), py::arg("alone") = false,
             "Gives its 'head' or 'tail' a transition of a plug-in, of half a second unless a length is "
             "given, and returns it. It is shared with the neighbour there, if there is one.");
    type.def(
        "remove_transition",
        [](const ObjectHandle &handle, const std::string &end) {
            On(handle, [&](const auto &project, const auto &object) {
                RemoveTransition(project, object, kEnds.Find(end));
            });
        },
        py::arg("end"), "Takes the transition at its 'head' or 'tail' away.");
    BindEffectChanges<ObjectHandle>(type);
}

} // namespace

void BindSequenceObjects(py::module_ &module)
{
    Type type(module, "SequenceObject",
              "A span of frames on a track that shows or plays frames of an asset.");
    BindIdentity<ObjectHandle>(type);
    BindFacts(type);
    BindRelations(type);
    BindMoving(type);
    BindTrimming(type);
    BindTransitions(type);
    type.def("__repr__", [](const ObjectHandle &object) {
        return "<marlet.SequenceObject " +
               (object.IsThere() ? std::string(py::repr(py::cast(object.Get()->Name()))) : "that is gone") +
               ">";
    });
    py::class_<VisualObjectHandle, ObjectHandle> visual(module, "VisualObject",
                                                        "A picture on a video track.");
    visual.def(
        "world_matrix",
        [](const VisualObjectHandle &object) {
            return ToArray(object.Get()->WorldTransformation(object.InProject()));
        },
        "From pixels of the asset to the frame of the sequence, as it stands without key frames.");
    py::class_<AudioObjectHandle, ObjectHandle>(module, "AudioObject", "Sound on an audio track.");
}

} // namespace marlet::python
