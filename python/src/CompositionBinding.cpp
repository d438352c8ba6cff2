#include "Bindings.h"
#include "Handles.h"
#include "Listing.h"
#include "Settings.h"
#include "Values.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/layers/TextLayer.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/operations/layers/LayerClipboard.h>
#include <marlet/operations/layers/LayerOperations.h>
#include <marlet/operations/layers/TextOperations.h>
#include <marlet/project/CompositionAsset.h>

#include "KeptEffect.h"

namespace marlet::python
{

namespace
{

using Type = py::class_<CompositionHandle, AssetHandle>;
using Layers = std::vector<LayerHandle>;

py::object AddMade(const CompositionHandle &composition, const std::shared_ptr<AbstractLayer> &layer,
                   unsigned int position)
{
    const auto to = composition.Get();
    Operate(*composition.Owner(), [&](const auto &project) { AddLayer(project, to, layer, position); });
    return Show(composition.Owner(), layer);
}

py::object AddText(const CompositionHandle &composition, const WideString &name, const WideString &text,
                   const std::optional<TextLayer::Format> &format, int width, int height,
                   unsigned int position)
{
    const auto to = composition.Get();
    const auto layer =
        TextLayer::Create(name, width > 0 ? width : to->Width(), height > 0 ? height : to->Height());
    Document &document = *composition.Owner();
    Edited(document, u"Add text", [&](Edit &) {
        AddLayer(document.Open(), to, layer, position);
        if (!text.empty())
            SetText(document.Open(), layer, text);
        if (!text.empty() && format)
            SetTextFormat(document.Open(), layer, {}, *format);
    });
    return Show(composition.Owner(), std::static_pointer_cast<AbstractLayer>(layer));
}

void BindAdding(Type &type)
{
    const auto position = py::arg("position") = 0;
    type.def(
        "add",
        [](const CompositionHandle &composition, const AssetHandle &asset, int start, unsigned int at) {
            const auto to = composition.Get();
            const auto shown = ObjectFrom(composition.Owner(), asset);
            const auto layer = Operate(*composition.Owner(), [&](const std::shared_ptr<Project> &project) {
                return AddAssetLayer(project, to, shown, start, at);
            });
            return Show(composition.Owner(), std::static_pointer_cast<AbstractLayer>(layer));
        },
        py::arg("asset"), py::arg("start_frame") = 0, py::kw_only(), position,
        "Adds a layer that shows the whole of an asset from a frame on, and returns it. Position 0 is the "
        "top.");
    type.def("add_text", &AddText, py::arg("name"), py::arg("text") = u"", py::kw_only(),
             py::arg("format") = py::none(), py::arg("width") = 0, py::arg("height") = 0, position,
             "Adds a layer of text and returns it.");
    type.def(
        "add_point",
        [](const CompositionHandle &composition, const WideString &name, unsigned int at) {
            return AddMade(composition, PointLayer::Create(name), at);
        },
        py::arg("name"), py::kw_only(), position, "Adds a layer for others to hang on, and returns it.");
    type.def(
        "add_camera",
        [](const CompositionHandle &composition, const WideString &name, float zoom, unsigned int at) {
            const auto to = composition.Get();
            const float lens = zoom > 0
                                   ? zoom
                                   : CameraLayer::CalculateLensZoom(
                                         CameraLayer::HorizontalFieldOfView(CameraLayer::Lens::Focal50),
                                         to->Width(), std::as_const(*to).Settings().PixelAspectRatioValue());
            return AddMade(composition, CameraLayer::Create(name, 0.f, lens, lens, 100.f), at);
        },
        py::arg("name"), py::kw_only(), py::arg("zoom") = 0.f, position,
        "Adds a camera and returns it: with a lens of 50 mm unless a zoom is given.");
    type.def(
        "add_light",
        [](const CompositionHandle &composition, const WideString &name, int kind, unsigned int at) {
            return AddMade(composition, LightLayer::Create(name, static_cast<LightLayer::LightType>(kind)),
                           at);
        },
        py::arg("name"), py::kw_only(), py::arg("light_type") = 0, position, "Adds a light and returns it.");
    type.def(
        "add_grade",
        [](const CompositionHandle &composition, const WideString &name, unsigned int at) {
            const auto to = composition.Get();
            return AddMade(composition, GradeLayer::Create(name, to->Width(), to->Height()), at);
        },
        py::arg("name"), py::kw_only(), position,
        "Adds a layer whose effects act on what lies beneath it, and returns it.");
}

py::list Paste(const CompositionHandle &composition, CopiedLayers &copied, std::optional<int> start,
               unsigned int position)
{
    const auto to = composition.Get();
    const KeptEffectFactory factory;
    PasteOptions options;
    options.startFrame = start;
    options.position = position;
    options.effectFactory = &factory;
    return ShowAll(composition.Owner(),
                   Operate(*composition.Owner(), [&](const std::shared_ptr<Project> &project) {
                       return PasteLayers(project, to, copied, options);
                   }));
}

void BindStack(Type &type)
{
    type.def(
        "remove_layers",
        [](const CompositionHandle &composition, const Layers &layers) {
            const auto removed = ObjectsFrom(composition.Owner(), layers);
            Operate(*composition.Owner(), [&](const auto &project) { RemoveLayers(project, removed); });
        },
        py::arg("layers"), "Takes layers out, as one edit. What refers to them is cleared.");
    type.def(
        "nest",
        [](const CompositionHandle &composition, const Layers &layers, const WideString &name) {
            const auto nested = ObjectsFrom(composition.Owner(), layers);
            const auto layer = Operate(*composition.Owner(), [&](const std::shared_ptr<Project> &project) {
                return NestLayers(project, nested, name);
            });
            return Show(composition.Owner(), std::static_pointer_cast<AbstractLayer>(layer));
        },
        py::arg("layers"), py::arg("name"),
        "Moves layers into a new composition, and returns the layer that shows it.");
    type.def(
        "copy",
        [](const CompositionHandle &composition, const Layers &layers) {
            return CopyLayers(composition.InProject(), ObjectsFrom(composition.Owner(), layers));
        },
        py::arg("layers"), "Copies layers, to be pasted into any composition of any project.");
    type.def("paste", &Paste, py::arg("copied"), py::kw_only(), py::arg("start_frame") = py::none(),
             py::arg("position") = 0,
             "Adds copies, with what they show if that is of another project, and returns them.");
    type.def(
        "duplicate",
        [](const CompositionHandle &composition, const WideString &name) {
            const auto source = composition.Get();
            const auto copy = Operate(*composition.Owner(), [&](const std::shared_ptr<Project> &project) {
                return DuplicateComposition(project, source, name);
            });
            return Show(composition.Owner(), std::static_pointer_cast<AbstractAsset>(copy));
        },
        py::arg("name"), "Adds a composition like this one, and returns it.");
}

} // namespace

void BindComposition(py::module_ &module)
{
    py::class_<CopiedLayers, std::shared_ptr<CopiedLayers>>(module, "CopiedLayers",
                                                            "Copies of layers of a composition.")
        .def("__len__", &CopiedLayers::Count);
    Type type(module, "Composition", "An asset that is made of layers, of which the first is on top.");
    type.def_property_readonly(
        "layers",
        [](const CompositionHandle &composition) {
            composition.Get();
            return MakeListing<AbstractLayer>(
                [composition] { return std::as_const(*composition.Get()).Layers(); },
                [document = composition.Owner()](const std::shared_ptr<AbstractLayer> &layer) {
                    return Show(document, layer);
                });
        },
        "Its layers, from the top down.");
    type.def_property_readonly(
        "settings", [](const CompositionHandle &composition) { return SettingsOf(composition); },
        "Its format.");
    BindFact<CompositionHandle>(
        type, "is_3d", [](const CompositionAsset &composition) { return composition.Is3D(); },
        "Whether it has a camera.");
    type.def(
        "active_camera",
        [](const CompositionHandle &composition, int frame) {
            return Show(composition.Owner(), composition.Get()->ActiveCameraLayer(frame));
        },
        py::arg("frame"), "The camera through which a frame is seen, or None.");
    BindAdding(type);
    BindStack(type);
}

} // namespace marlet::python
