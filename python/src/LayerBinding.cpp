#include "Bindings.h"
#include "Listing.h"
#include "Owners.h"
#include "Values.h"

#include <marlet/layers/AbstractLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/operations/layers/LayerOperations.h>
#include <marlet/operations/layers/LayerTiming.h>
#include <marlet/operations/layers/MaskOperations.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>

#include <algorithm>
#include <utility>

namespace marlet::python
{

namespace
{

using Type = py::class_<LayerHandle>;

const Words<LayerType> kTypes{{LayerType::Asset, "asset"},   {LayerType::Effect3D, "effect3d"},
                              {LayerType::Camera, "camera"}, {LayerType::Light, "light"},
                              {LayerType::Grade, "grade"},   {LayerType::Point, "point"},
                              {LayerType::Text, "text"}};
const Words<LayerDimensions> kDimensions{{LayerDimensions::TwoD, "2d"},
                                         {LayerDimensions::ThreeD, "3d"},
                                         {LayerDimensions::ThreeDContent, "3d-content"}};

void BindFacts(Type &type)
{
    BindFact<LayerHandle>(
        type, "id", [](const AbstractLayer &layer) { return layer.ID().ToNarrowString(); },
        "The text of its ID.");
    BindFact<LayerHandle>(
        type, "type", [](const AbstractLayer &layer) { return kTypes.Of(layer.Type()); },
        "'asset', 'effect3d', 'camera', 'light', 'grade', 'point' or 'text'.");
    BindFact<LayerHandle>(
        type, "has_video", [](const AbstractLayer &layer) { return layer.HasVideo(); },
        "Whether it has a picture.");
    BindFact<LayerHandle>(
        type, "has_audio", [](const AbstractLayer &layer) { return layer.HasAudio(); },
        "Whether it has sound.");
    BindFact<LayerHandle>(
        type, "length", [](const AbstractLayer &layer) { return layer.Length(); }, "In frames.");
    type.def_property_readonly(
        "composition",
        [](const LayerHandle &layer) -> py::object {
            const auto composition = layer.Get()->ParentComposition(layer.InProject()->Assets());
            return Show(layer.Owner(), std::static_pointer_cast<AbstractAsset>(composition));
        },
        "The composition that it is in.");
    type.def_property_readonly(
        "parent",
        [](const LayerHandle &layer) {
            return Show(layer.Owner(), layer.Get()->ParentLayer(layer.InProject()->Assets()));
        },
        "The layer that it hangs on, or None.");
    BindProperties<LayerHandle>(type);
}

void BindSwitches(Type &type)
{
    const auto flag = [&type](const char *name, bool (AbstractLayer::*read)() const,
                              void (AbstractLayer::*write)(bool), const char16_t *label, const char *help) {
        BindField<LayerHandle>(
            type, name, label, [read](const AbstractLayer &layer) { return (layer.*read)(); },
            [write](AbstractLayer &layer, bool value) { (layer.*write)(value); }, help);
    };
    BindField<LayerHandle>(
        type, "name", u"Rename layer", [](const AbstractLayer &layer) { return layer.Name(); },
        [](AbstractLayer &layer, const WideString &name) { layer.SetName(name); }, "Its name.");
    flag("visible", &AbstractLayer::IsVisible, &AbstractLayer::SetVisible, u"Set visibility",
         "Whether it is shown.");
    flag("muted", &AbstractLayer::IsMuted, &AbstractLayer::SetMuted, u"Mute layer",
         "Whether its sound is off.");
    flag("locked", &AbstractLayer::IsLocked, &AbstractLayer::SetLocked, u"Lock layer",
         "Whether a host should keep its user from changing it.");
    flag("motion_blur", &AbstractLayer::IsMotionBlurEnabled, &AbstractLayer::SetMotionBlur,
         u"Set motion blur", "Whether it is blurred by its motion.");
    BindField<LayerHandle>(
        type, "blend_mode", u"Set blend mode",
        [](const AbstractLayer &layer) { return static_cast<int>(layer.BlendMode()); },
        [](AbstractLayer &layer, int mode) { layer.SetBlendMode(static_cast<Blend>(mode)); },
        "How it is composited with what lies below it: a number that hosts give a meaning.");
    BindField<LayerHandle>(
        type, "dimensions", u"Set dimensions",
        [](const AbstractLayer &layer) { return kDimensions.Of(layer.Dimensions()); },
        [](AbstractLayer &layer, const std::string &word) {
            const LayerDimensions dimensions = kDimensions.Find(word);
            layer.SetDimensions(dimensions);
            if (layer.Dimensions() != dimensions)
                throw py::value_error("A layer of this class cannot be '" + word + "'");
        },
        "'2d', '3d' or '3d-content', as far as its class takes them.");
}

template <class Function> void Trim(const LayerHandle &layer, const Function &span)
{
    const auto object = layer.Get();
    const auto [start, end] = span(*object);
    Operate(*layer.Owner(), [&, first = start, last = end](const std::shared_ptr<Project> &project) {
        TrimLayer(project, object, first, last);
    });
}

void BindTimes(Type &type)
{
    type.def_property(
        "start_frame", [](const LayerHandle &layer) { return layer.Get()->StartFrame(); },
        [](const LayerHandle &layer, int frame) {
            Trim(layer,
                 [frame](const AbstractLayer &trimmed) { return std::pair(frame, trimmed.EndFrame()); });
        },
        "The first frame of its composition that shows it. Assigning trims the layer: what is seen stays "
        "where it is.");
    type.def_property(
        "end_frame", [](const LayerHandle &layer) { return layer.Get()->EndFrame(); },
        [](const LayerHandle &layer, int frame) {
            Trim(layer,
                 [frame](const AbstractLayer &trimmed) { return std::pair(trimmed.StartFrame(), frame); });
        },
        "The first frame of its composition that does not show it any more. Assigning trims the layer.");
    type.def(
        "time_at",
        [](const LayerHandle &layer, const py::object &frames) -> py::object {
            const auto object = layer.Get();
            const auto composition = object->ParentComposition(layer.InProject()->Assets());
            const IntegerArray numbers = ToIntegers(frames);
            if (numbers.shape.empty())
                return py::int_(object->GlobalFrameToRelativeTime(numbers.values.front(), composition));
            py::array_t<int> times(numbers.shape);
            std::ranges::transform(numbers.values, times.mutable_data(), [&](int frame) {
                return object->GlobalFrameToRelativeTime(frame, composition);
            });
            return times;
        },
        py::arg("frame"),
        "The time in which properties count, in milliseconds from the start of the layer, of a frame of "
        "the composition. Takes an array of frames too.");
    type.def(
        "frame_at",
        [](const LayerHandle &layer, int time) {
            return layer.Get()->RelativeTimeToGlobalFrame(time, layer.InProject()->Assets());
        },
        py::arg("time"), "The frame of the composition at a time of the layer in milliseconds.");
}

void BindMatrices(Type &type)
{
    using Ask = AbstractLayer::Matrix (AbstractLayer::*)(int, const std::shared_ptr<Project> &, bool) const;
    const auto matrix = [&type](const char *name, Ask ask, const char *help) {
        type.def(
            name,
            [ask](const LayerHandle &layer, const py::object &times, bool avoidZeroScale) {
                const auto object = layer.Get();
                const auto project = layer.InProject();
                return MatricesArray(ToIntegers(times),
                                     [&](int time) { return (*object.*ask)(time, project, avoidZeroScale); });
            },
            py::arg("time"), py::kw_only(), py::arg("avoid_zero_scale") = false, help);
    };
    matrix("world_matrix", &AbstractLayer::WorldTransformationAtTime,
           "Where the layer stands at a time in milliseconds from its start: a matrix of 4 rows that takes "
           "points of its picture, as columns, to the composition. An array of times gives an array of "
           "matrices.");
    matrix("local_matrix", &AbstractLayer::TransformationAtTime,
           "The layer's own placement, without its parents.");
    matrix("parent_matrix", &AbstractLayer::ParentTransformationAtTime, "What the chain of parents adds.");
    type.def(
        "origin_matrix",
        [](const LayerHandle &layer, const py::object &times) {
            const auto object = layer.Get();
            const auto project = layer.InProject();
            return MatricesArray(ToIntegers(times),
                                 [&](int time) { return object->OriginAtTime(time, project); });
        },
        py::arg("time"), "The offset of the content from the anchor point.");
}

void BindOperations(Type &type)
{
    type.def(
        "set_parent",
        [](const LayerHandle &layer, const LayerHandle *parent, int frame) {
            const auto object = layer.Get();
            const auto above = ObjectFrom(layer.Owner(), parent);
            Operate(*layer.Owner(), [&](const std::shared_ptr<Project> &project) {
                if (above)
                    SetParent(project, object, above, frame);
                else
                    RemoveParent(project, object, frame);
            });
        },
        py::arg("parent"), py::kw_only(), py::arg("frame") = 0,
        "Hangs the layer on another one, or on none, so that it stays where it is at a frame of the "
        "composition.");
    type.def(
        "split",
        [](const LayerHandle &layer, int frame) {
            const auto object = layer.Get();
            return Show(layer.Owner(), Operate(*layer.Owner(), [&](const std::shared_ptr<Project> &project) {
                            return SplitLayer(project, object, frame);
                        }));
        },
        py::arg("frame"),
        "Ends the layer at a frame and returns a new one that goes on from there, above it.");
    type.def(
        "trim",
        [](const LayerHandle &layer, int start, int end) {
            Trim(layer, [&](const AbstractLayer &) { return std::pair(start, end); });
        },
        py::arg("start_frame"), py::arg("end_frame"),
        "Gives it other edges; what is seen stays where it is in time.");
    type.def(
        "slip",
        [](const LayerHandle &layer, int frames) {
            const auto object = layer.Get();
            Operate(*layer.Owner(), [&](const auto &project) { SlipLayer(project, object, frames); });
        },
        py::arg("frames"), "Shows frames of its asset that lie so many later, in the same place.");
    type.def(
        "move",
        [](const LayerHandle &layer, int frames) {
            const auto object = layer.Get();
            Operate(*layer.Owner(), [&](const auto &project) { MoveLayers(project, {object}, frames); });
        },
        py::arg("frames"), "Moves it in time, with its key frames.");
    type.def(
        "reorder",
        [](const LayerHandle &layer, unsigned int position) {
            const auto object = layer.Get();
            Operate(*layer.Owner(), [&](const auto &project) { ReorderLayer(project, object, position); });
        },
        py::arg("position"), "Moves it in the stack; 0 is the top.");
    type.def(
        "remove",
        [](const LayerHandle &layer) {
            const auto object = layer.Get();
            Operate(*layer.Owner(), [&](const auto &project) { RemoveLayers(project, {object}); });
        },
        "Takes it out of its composition. What refers to it is cleared.");
}

void BindMaskMaking(Type &type)
{
    type.def(
        "add_rectangle_mask",
        [](const LayerHandle &layer, const WideString &name, const Pair &center, float width, float height,
           float radius) {
            const auto object = layer.Get();
            return Show(
                layer, Operate(*layer.Owner(), [&](const std::shared_ptr<Project> &project) {
                    return AddRectangleMask(project, object, name, {ToPoint(center), width, height}, radius);
                }));
        },
        py::arg("name"), py::arg("center"), py::arg("width"), py::arg("height"), py::kw_only(),
        py::arg("radius") = 0.f,
        "Adds a mask, with round corners if there is a radius, and returns it. In pixels from the middle of "
        "the layer's picture with Y up.");
    type.def(
        "add_ellipse_mask",
        [](const LayerHandle &layer, const WideString &name, const Pair &center, float width, float height) {
            const auto object = layer.Get();
            return Show(layer, Operate(*layer.Owner(), [&](const std::shared_ptr<Project> &project) {
                            return AddEllipseMask(project, object, name, {ToPoint(center), width, height});
                        }));
        },
        py::arg("name"), py::arg("center"), py::arg("width"), py::arg("height"),
        "Adds a mask that is an ellipse of that size, and returns it.");
}

void BindLists(Type &type)
{
    type.def_property_readonly(
        "effects",
        [](const LayerHandle &layer) {
            layer.Get();
            return MakeListing<EffectInstance>(
                [layer] {
                    const EffectList *const effects = EffectsOf(*layer.Get());
                    return effects ? *effects : EffectList();
                },
                [layer](const std::shared_ptr<EffectInstance> &effect) { return Show(layer, effect); });
        },
        "Its effects, in the order of application; none where its class has none.");
    type.def_property_readonly(
        "masks",
        [](const LayerHandle &layer) {
            layer.Get();
            return MakeListing<Mask>(
                [layer] {
                    const MaskList *const masks = MasksOf(*layer.Get());
                    return masks ? *masks : MaskList();
                },
                [layer](const std::shared_ptr<Mask> &mask) { return Show(layer, mask); });
        },
        "Its masks; none where its class has none.");
}

} // namespace

void BindLayer(py::module_ &module)
{
    Type type(
        module, "Layer",
        "A layer of a composition. Frames are of the composition, an end frame is the first that is out. "
        "Properties animate in milliseconds from the start of the layer.");
    BindIdentity<LayerHandle>(type);
    BindFacts(type);
    BindSwitches(type);
    BindTimes(type);
    BindMatrices(type);
    BindOperations(type);
    BindMaskMaking(type);
    BindLists(type);
    type.def("__repr__", [](const py::object &self) {
        const auto &layer = py::cast<const LayerHandle &>(self);
        return "<marlet." + py::cast<std::string>(py::type::of(self).attr("__name__")) + " " +
               (layer.IsThere() ? std::string(py::repr(py::cast(layer.Get()->Name()))) : "that is gone") +
               ">";
    });
}

} // namespace marlet::python
