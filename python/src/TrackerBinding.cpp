#include "Bindings.h"
#include "Owners.h"
#include "TrackerRun.h"
#include "Values.h"

#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/layers/TrackerOperations.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::python
{

namespace
{

using Method = Tracker::TrackerMethod;
using Points = std::vector<TrackingActiveObject::Point>;

const Words<Method> kMethods{{Method::OpticalFlow, "flow"}, {Method::TemplateMatching, "template"}};

std::shared_ptr<AssetLayer> LayerOf(const Project &project, const Tracker &tracker)
{
    for (const auto &asset : project.Assets().GetByType(AssetType::Composition))
        if (const auto layer =
                static_cast<const CompositionAsset &>(*asset).FindLayerByID(tracker.ParentLayerID()))
            return std::dynamic_pointer_cast<AssetLayer>(layer);
    return nullptr;
}

void KeepPath(const TrackerHandle &handle, const AssetLayer &layer, const TrackedPath &path)
{
    const auto tracker = handle.Get();
    const auto keep = [&](Edit &edit, const std::shared_ptr<TrackingPoint> &point, const Points &positions) {
        edit.Touch(point, "featurePosition");
        KeyFrameList &keys = point->Animation().KeyFrames("featurePosition");
        for (std::size_t i = 0; i < positions.size(); ++i)
            keys.Set(layer.LayerFrameToRelativeTime(path.frames[i], handle.InProject()->Assets()),
                     positions[i]);
    };
    Edited(*handle.Owner(), u"Track", [&](Edit &edit) {
        keep(edit, tracker->PrimaryTrackingPoint(), path.primary);
        if (tracker->Type() == Tracker::TrackerType::TwoPoints)
            keep(edit, tracker->SecondaryTrackingPoint(), path.secondary);
    });
}

TrackedPath Run(const TrackerHandle &handle, int frame, bool backwards, bool oneFrame, bool keep,
                float tolerance)
{
    const auto tracker = handle.Get();
    const auto layer = LayerOf(*handle.InProject(), *tracker);
    if (!layer)
        throw Failure("OperationError", "The tracker is on no layer that shows an asset");
    TrackingOrder order{frame, backwards, oneFrame, {}};
    order.options.errorTolerance = tolerance;
    TrackedPath path = RunTracker(handle.InProject(), layer, tracker, order);
    if (keep)
        KeepPath(handle, *layer, path);
    return path;
}

py::array PositionsOf(const Points &points)
{
    return ValuesArray({static_cast<py::ssize_t>(points.size())}, [&](int i) -> PropertyValue {
        return points.empty() ? TrackingActiveObject::Point{} : points[static_cast<std::size_t>(i)];
    });
}

void BindPath(py::module_ &module)
{
    py::class_<TrackedPath> type(module, "TrackedPath", "What a run of a tracker found.");
    type.def_property_readonly(
        "frames",
        [](const TrackedPath &path) {
            return py::array_t<int>(static_cast<py::ssize_t>(path.frames.size()), path.frames.data());
        },
        "Counted from the start of the layer, as an array.");
    type.def_property_readonly(
        "positions", [](const TrackedPath &path) { return PositionsOf(path.primary); },
        "Of the primary feature, in pixels from the middle of the frame with Y up, as an array of rows of "
        "two.");
    type.def_property_readonly(
        "secondary_positions", [](const TrackedPath &path) { return PositionsOf(path.secondary); },
        "Of the secondary feature.");
    type.def_readonly(
        "reason", &TrackedPath::reason,
        "Why it ended: 'end of layer', 'frame done', 'target lost', 'frame unavailable' or 'stopped'.");
}

void BindTracker(py::class_<TrackerHandle> &type)
{
    BindIdentity<TrackerHandle>(type);
    BindFact<TrackerHandle>(
        type, "id", [](const Tracker &tracker) { return tracker.ID().ToNarrowString(); },
        "The text of its ID.");
    BindField<TrackerHandle>(
        type, "name", u"Rename tracker", [](const Tracker &tracker) { return tracker.Name(); },
        [](Tracker &tracker, const WideString &name) { tracker.SetName(name); }, "Its name.");
    BindField<TrackerHandle>(
        type, "method", u"Change method",
        [](const Tracker &tracker) { return kMethods.Of(tracker.Method()); },
        [](Tracker &tracker, const std::string &method) { tracker.SetMethod(kMethods.Find(method)); },
        "'flow' or 'template'.");
    type.def_property_readonly(
        "primary_point",
        [](const TrackerHandle &tracker) { return Show(tracker, tracker.Get()->PrimaryTrackingPoint()); },
        "The feature that it follows, or None.");
    type.def_property_readonly(
        "secondary_point",
        [](const TrackerHandle &tracker) { return Show(tracker, tracker.Get()->SecondaryTrackingPoint()); },
        "A second feature, which counts for trackers of two, or None.");
    type.def("run", &Run, py::arg("frame") = 0, py::kw_only(), py::arg("backwards") = false,
             py::arg("one_frame") = false, py::arg("keep") = true, py::arg("tolerance") = 0.2f,
             "Follows the feature from a frame of the layer on, to its end or by one frame, and returns "
             "the path. It is kept as key frames of the features, as one edit, unless something else is "
             "said. Other threads of Python run meanwhile, and may edit.");
    type.def(
        "apply_to",
        [](const TrackerHandle &tracker, const LayerHandle &layer, double tolerance) {
            const auto followed = tracker.Get();
            const auto follower = ObjectFrom(tracker.Owner(), layer);
            Operate(*tracker.Owner(),
                    [&](const auto &project) { FollowTracker(project, followed, follower, tolerance); });
        },
        py::arg("layer"), py::kw_only(), py::arg("tolerance") = 0.0,
        "Has a layer of the same composition follow the path. Key frames that are not needed to stay "
        "within a tolerance in pixels are left out.");
}

} // namespace

void BindTrackers(py::module_ &module)
{
    BindPath(module);
    py::class_<TrackingPointHandle> point(module, "TrackingPoint", "A feature that a tracker follows.");
    BindIdentity<TrackingPointHandle>(point);
    BindFact<TrackingPointHandle>(
        point, "id", [](const TrackingPoint &shown) { return shown.ID().ToNarrowString(); },
        "The text of its ID.");
    BindProperties<TrackingPointHandle>(point);
    py::class_<TrackerHandle> tracker(module, "Tracker",
                                      "Motion tracking on a layer: which feature is followed, and how.");
    BindTracker(tracker);
}

} // namespace marlet::python
