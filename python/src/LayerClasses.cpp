#include "Bindings.h"
#include "Effects.h"
#include "Listing.h"
#include "Values.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/Effect3DLayer.h>
#include <marlet/layers/GradeLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/operations/assets/ProjectOperations.h>
#include <marlet/operations/layers/TrackerOperations.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/AssetList.h>
#include <marlet/tracking/Tracker.h>

namespace marlet::python
{

namespace
{

const Words<AutoOrient> kOrientations{{AutoOrient::Off, "off"},
                                      {AutoOrient::AlongPath, "along-path"},
                                      {AutoOrient::TowardsTarget, "towards-target"}};

template <class Handle, class Class> void BindAutoOrientation(Class &type)
{
    using Object = typename Handle::Object;
    BindField<Handle>(
        type, "auto_orientation", u"Change orientation",
        [](const Object &layer) { return kOrientations.Of(layer.AutoOrientation()); },
        [](Object &layer, const std::string &word) { layer.SetAutoOrientation(kOrientations.Find(word)); },
        "'off', 'along-path' or 'towards-target', as far as its class takes them.");
}

/// How large the layer's picture is after its effects, whose margins plug-ins tell.
std::tuple<int, int, Pair> SizeAfterEffects(const AssetLayerHandle &handle, int time, float scale)
{
    const auto layer = handle.Get();
    const auto asset = layer->Asset(handle.InProject()->Assets());
    if (!asset)
        throw Failure("OperationError", "The layer's asset is missing");
    kytl::matl::KyPoint<2, float> offset;
    int width = 0;
    int height = 0;
    AssetLayer::ComputePostFilterDims(asset, std::as_const(*layer).Effects(), time, scale, false, offset,
                                      width, height);
    return {width, height, ToPair(offset)};
}

py::object AddTrackerTo(const AssetLayerHandle &handle, const WideString &name, const Pair &at, float feature,
                        float search)
{
    const auto layer = handle.Get();
    return Show(handle, Operate(*handle.Owner(), [&](const std::shared_ptr<Project> &project) {
                    return AddTracker(project, layer, name, {ToPoint(at), feature, feature},
                                      {ToPoint(at), search, search});
                }));
}

void BindAssetLayer(py::class_<AssetLayerHandle, LayerHandle> &type)
{
    type.def_property(
        "asset",
        [](const AssetLayerHandle &layer) {
            return Show(layer.Owner(), layer.Get()->Asset(layer.InProject()->Assets()));
        },
        [](const AssetLayerHandle &layer, const AssetHandle &asset) {
            const auto changed = layer.Get();
            const auto shown = ObjectFrom(layer.Owner(), asset);
            Operate(*layer.Owner(), [&](const auto &project) { ReplaceUses(project, {changed}, shown); });
        },
        "What it shows, or None if that is missing.");
    BindFact<AssetLayerHandle>(
        type, "asset_start", [](const AssetLayer &layer) { return layer.AssetInstanceStart(); },
        "The first frame of the asset that is used.");
    BindAutoOrientation<AssetLayerHandle>(type);
    type.def_property_readonly(
        "trackers",
        [](const AssetLayerHandle &layer) {
            layer.Get();
            return MakeListing<Tracker>(
                [layer] { return std::as_const(*layer.Get()).Trackers(); },
                [layer](const std::shared_ptr<Tracker> &tracker) { return Show(layer, tracker); });
        },
        "The descriptions of motion tracking on it.");
    type.def("add_tracker", &AddTrackerTo, py::arg("name"), py::arg("at"), py::kw_only(),
             py::arg("feature") = 30.f, py::arg("search") = 60.f,
             "Adds a tracker of a square feature at a point (pixels from the middle of the frame, Y up), "
             "which is looked for in a square around it, and returns it.");
    type.def("size_after_effects", &SizeAfterEffects, py::arg("time") = 0, py::kw_only(),
             py::arg("scale") = 1.f,
             "How large a frame of the asset is after the effects: width, height, and where the asset's "
             "frame lies in it.");
    BindEffectChanges<AssetLayerHandle>(type);
}

void BindCamera(py::module_ &module)
{
    py::class_<CameraHandle, LayerHandle> type(module, "CameraLayer", "A camera.");
    BindField<CameraHandle>(
        type, "depth_of_field", u"Set depth of field",
        [](const CameraLayer &layer) { return layer.HasDepthOfField(); },
        [](CameraLayer &layer, bool has) { layer.SetDepthOfField(has); },
        "Whether what is out of focus is blurred.");
    BindField<CameraHandle>(
        type, "near_clip", u"Change clipping", [](const CameraLayer &layer) { return layer.NearClip(); },
        [](CameraLayer &layer, float distance) { layer.SetNearClip(distance); },
        "What is nearer is not seen.");
    BindField<CameraHandle>(
        type, "far_clip", u"Change clipping", [](const CameraLayer &layer) { return layer.FarClip(); },
        [](CameraLayer &layer, float distance) { layer.SetFarClip(distance); },
        "What is further is not seen.");
    BindAutoOrientation<CameraHandle>(type);
}

void BindLight(py::module_ &module)
{
    py::class_<LightHandle, LayerHandle> type(module, "LightLayer", "A light.");
    BindField<LightHandle>(
        type, "light_type", u"Change light",
        [](const LightLayer &layer) { return static_cast<int>(layer.LightSourceType()); },
        [](LightLayer &layer, int kind) {
            layer.SetLightSourceType(static_cast<LightLayer::LightType>(kind));
        },
        "A number that hosts give a meaning.");
    BindAutoOrientation<LightHandle>(type);
}

void BindGrade(py::module_ &module)
{
    py::class_<GradeHandle, LayerHandle> type(module, "GradeLayer",
                                              "A layer whose effects act on what lies beneath it.");
    BindField<GradeHandle>(
        type, "width", u"Change size", [](const GradeLayer &layer) { return layer.Width(); },
        [](GradeLayer &layer, int width) { layer.SetWidth(width); }, "In pixels.");
    BindField<GradeHandle>(
        type, "height", u"Change size", [](const GradeLayer &layer) { return layer.Height(); },
        [](GradeLayer &layer, int height) { layer.SetHeight(height); }, "In pixels.");
    BindEffectChanges<GradeHandle>(type);
}

} // namespace

void BindLayerClasses(py::module_ &module)
{
    py::class_<AssetLayerHandle, LayerHandle> asset(module, "AssetLayer", "A layer that shows an asset.");
    BindAssetLayer(asset);
    BindCamera(module);
    BindLight(module);
    BindGrade(module);
    py::class_<PointLayerHandle, LayerHandle>(module, "PointLayer",
                                              "A layer that shows nothing: others hang on it.");
    py::class_<Effect3DLayerHandle, LayerHandle>(
        module, "Effect3DLayer", "A layer that shows an object of a host, which is kept as it came.");
}

} // namespace marlet::python
