#include <marlet/operations/layers/TrackerOperations.h>

#include <marlet/foundation/Arguments.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/curves/KeyFrameOperations.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingPoint.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <numbers>

namespace marlet::project
{

namespace
{

using Place = kytl::matl::KyPoint<2, float>;
using Point = kytl::matl::KyPoint<3, float>;

constexpr char kPosition[] = "position";
constexpr char kRotation[] = "rotationZ";
constexpr char kScale[] = "scale";
constexpr char kFeaturePosition[] = "featurePosition";

/// The layer that follows and the one whose picture was tracked.
struct Following {
    std::shared_ptr<Project> project;
    std::shared_ptr<AbstractLayer> follower;
    std::shared_ptr<AssetLayer> tracked;
    std::shared_ptr<AbstractAsset> asset;

    Following(const std::shared_ptr<Project> &inProject, const Tracker &tracker,
              const std::shared_ptr<AbstractLayer> &layer)
        : project(inProject), follower(layer)
    {
        const AssetList &assets = std::as_const(*project).Assets();
        const std::shared_ptr<CompositionAsset> composition = layer->ParentComposition(assets);
        tracked = std::dynamic_pointer_cast<AssetLayer>(composition->FindLayerByID(tracker.ParentLayerID()));
        if (!tracked)
            throw OperationException("Tracker " + Quoted(tracker.Name()) +
                                     " is on no layer of the composition of " + Quoted(layer->Name()));
        asset = tracked->Asset(assets);
        if (!asset)
            throw OperationException("The asset of layer " + Quoted(tracked->Name()) + " is missing");
        RequireIndependent(*composition);
    }

    /// Where the follower has to stand to lie on a feature, in its own time and frame of reference.
    std::pair<int, Point> StandOn(int time, const Place &feature) const
    {
        const int own = tracked->RelativeTimeToLayerRelativeTime(time, follower, project);
        // The tracker counts from the middle of the rows and columns, matrices from the lower left corner.
        const Point pixel{static_cast<float>(asset->Width() / 2) + feature.X,
                          static_cast<float>(asset->Height() - asset->Height() / 2) + feature.Y, 0};
        const Point place = tracked->WorldTransformationAtTime(time, project, false).TransformPoint(pixel);
        AbstractLayer::Matrix toFrame = follower->ParentTransformationAtTime(own, project, true);
        toFrame.Invert();
        Point position = toFrame.TransformPoint(place);
        if (follower->Dimensions() == LayerDimensions::TwoD)
            position.Z = boost::get<Point>(follower->Animation().ValueAtTime(kPosition, own)).Z;
        return {own, position};
    }

private:
    /// A layer that moves what was tracked would run after itself. The parents are known not to run in a
    /// circle, once a matrix was asked for.
    void RequireIndependent(const CompositionAsset &composition) const
    {
        tracked->ParentTransformationAtTime(0, project, false);
        for (std::shared_ptr<AbstractLayer> moving = tracked; moving;
             moving = composition.FindLayerByID(moving->ParentLayerID()))
            if (moving == follower)
                throw OperationException("Layer " + Quoted(follower->Name()) +
                                         " moves the one that was tracked");
    }
};

/// Where the features are at one time, as the follower stands.
struct PathStep {
    Point primary;
    Point secondary; ///< that of the primary where there is none
};

using Path = std::map<int, PathStep>; ///< by the follower's time

Path PathOf(const Tracker &tracker, const Following &following)
{
    const std::shared_ptr<TrackingPoint> &point = tracker.PrimaryTrackingPoint();
    const std::shared_ptr<TrackingPoint> &other = tracker.SecondaryTrackingPoint();
    const auto stand = [&following](const TrackingPoint &feature, int time) {
        const PropertyValue place = feature.Animation().ValueAtTime(kFeaturePosition, time);
        return following.StandOn(time, boost::get<Place>(place));
    };
    Path path;
    if (point)
        for (const int time : std::as_const(*point).Animation().KeyFrames(kFeaturePosition).Locations()) {
            const auto [own, primary] = stand(*point, time);
            path.emplace(own, PathStep{primary, other ? stand(*other, time).second : primary});
        }
    if (path.empty())
        throw OperationException("Tracker " + Quoted(tracker.Name()) + " has no path yet");
    return path;
}

/// The line from the primary to the secondary point, seen along the depth.
struct Line {
    explicit Line(const PathStep &step)
        : length(std::hypot(double(step.secondary.X) - step.primary.X,
                            double(step.secondary.Y) - step.primary.Y)),
          degrees(std::atan2(double(step.secondary.Y) - step.primary.Y,
                             double(step.secondary.X) - step.primary.X) *
                  180 / std::numbers::pi)
    {
    }

    double length;
    double degrees; ///< against the clock
};

void RequireTwoPoints(const Tracker &tracker, const Path &path)
{
    const std::shared_ptr<TrackingPoint> &other = tracker.SecondaryTrackingPoint();
    if (tracker.Type() != Tracker::TrackerType::TwoPoints || !other ||
        std::as_const(*other).Animation().KeyFrames(kFeaturePosition).IsEmpty())
        throw OperationException("Tracker " + Quoted(tracker.Name()) +
                                 " has not two points with paths, from which rotation and scale come");
    for (const auto &[time, step] : path)
        if (!(Line(step).length > 0))
            throw OperationException("The two points of tracker " + Quoted(tracker.Name()) +
                                     " are in one place");
}

/// The rotations by time, which turn with the clock, going on round where the line does.
std::vector<KeyFrame> RotationKeys(const Path &path, float first)
{
    std::vector<KeyFrame> keys;
    double former = Line(path.begin()->second).degrees;
    double turned = 0;
    for (const auto &[time, step] : path) {
        const double degrees = Line(step).degrees;
        turned += std::remainder(former - degrees, 360.0);
        former = degrees;
        keys.emplace_back(time, static_cast<float>(first + turned));
    }
    return keys;
}

std::vector<KeyFrame> ScaleKeys(const Path &path, const Scale3D &first)
{
    std::vector<KeyFrame> keys;
    const double firstLength = Line(path.begin()->second).length;
    for (const auto &[time, step] : path) {
        const auto factor = static_cast<float>(Line(step).length / firstLength);
        keys.emplace_back(time, Scale3D{first.X * factor, first.Y * factor, first.Z * factor});
    }
    return keys;
}

void Animate(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
             const std::vector<KeyFrame> &keys, double tolerance)
{
    PasteKeyFrames(project, property, keys, keys.front().Time());
    if (tolerance > 0)
        SimplifyKeyFrames(project, property, tolerance, {keys.front().Time(), keys.back().Time()});
}

} // namespace

std::shared_ptr<Tracker> AddTracker(const std::shared_ptr<Project> &project,
                                    const std::shared_ptr<AssetLayer> &layer, const WideString &name,
                                    const PictureRectangle &feature, const PictureRectangle &search)
{
    Require(layer, "layer");
    if (!(feature.width > 0 && feature.height > 0))
        throw OperationException("The size of a feature is above 0");
    if (!(search.width >= feature.width && search.height >= feature.height))
        throw OperationException("The search area is smaller than the feature");
    Edit edit(project, u"Add tracker");
    edit.Touch(layer);
    const std::shared_ptr<Tracker> tracker =
        Tracker::Create(name, feature.centre, feature.centre, feature.width, search.width);
    PropertyManager &properties = tracker->PrimaryTrackingPoint()->Animation();
    properties.StaticValue("featureDimensions") = Place{feature.width, feature.height};
    properties.StaticValue("searchDimensions") = Place{search.width, search.height};
    properties.StaticValue("searchPosition") =
        Place{search.centre.X - feature.centre.X, search.centre.Y - feature.centre.Y};
    tracker->SetParentLayerID(layer->ID());
    layer->Trackers().Add(tracker);
    edit.Commit();
    return tracker;
}

void FollowTracker(const std::shared_ptr<Project> &project, const std::shared_ptr<Tracker> &tracker,
                   const std::shared_ptr<AbstractLayer> &layer, double tolerance)
{
    FollowTracker(project, tracker, layer, FollowOptions{tolerance});
}

void FollowTracker(const std::shared_ptr<Project> &project, const std::shared_ptr<Tracker> &tracker,
                   const std::shared_ptr<AbstractLayer> &layer, const FollowOptions &options)
{
    Require(project, "project");
    Require(tracker, "tracker");
    Require(layer, "layer");
    Edit edit(project, u"Follow tracker");
    const Path path = PathOf(*tracker, Following(project, *tracker, layer));
    if (options.rotation || options.scale)
        RequireTwoPoints(*tracker, path);
    const int start = path.begin()->first;
    std::vector<KeyFrame> places;
    double furthest = 0;
    for (const auto &[time, step] : path) {
        places.emplace_back(time, step.primary);
        furthest = std::max(furthest, Line(step).length);
    }
    edit.Touch(tracker);
    tracker->SetDestinationLayerID(layer->ID());
    if (options.rotation) {
        const AnimatedProperty rotation(layer, kRotation);
        Animate(project, rotation, RotationKeys(path, boost::get<float>(rotation.ValueAt(start))),
                options.tolerance / furthest * 180 / std::numbers::pi);
    }
    if (options.scale) {
        const AnimatedProperty scale(layer, kScale);
        const auto first = boost::get<Scale3D>(scale.ValueAt(start));
        const double most = std::max({std::abs(first.X), std::abs(first.Y), std::abs(first.Z)});
        Animate(project, scale, ScaleKeys(path, first),
                options.tolerance / Line(path.begin()->second).length * most);
    }
    Animate(project, AnimatedProperty(layer, kPosition), places, options.tolerance);
    edit.Commit();
}

} // namespace marlet::project
