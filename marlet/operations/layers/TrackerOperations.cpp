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

#include <map>

namespace marlet::project
{

namespace
{

using Place = kytl::matl::KyPoint<2, float>;
using Point = kytl::matl::KyPoint<3, float>;

constexpr char kPosition[] = "position";
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

/// By time, the path as the follower goes it.
std::map<int, Point> PathOf(const Tracker &tracker, const Following &following)
{
    const std::shared_ptr<TrackingPoint> &point = tracker.PrimaryTrackingPoint();
    std::map<int, Point> path;
    if (point) {
        const PropertyManager &properties = point->Animation();
        for (const int time : properties.KeyFrames(kFeaturePosition).Locations())
            path.insert(
                following.StandOn(time, boost::get<Place>(properties.ValueAtTime(kFeaturePosition, time))));
    }
    if (path.empty())
        throw OperationException("Tracker " + Quoted(tracker.Name()) + " has no path yet");
    return path;
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
    Require(project, "project");
    Require(tracker, "tracker");
    Require(layer, "layer");
    Edit edit(project, u"Follow tracker");
    const AnimatedProperty position(layer, kPosition);
    const std::map<int, Point> path = PathOf(*tracker, Following(project, *tracker, layer));
    std::vector<KeyFrame> keys;
    for (const auto &[time, point] : path)
        keys.emplace_back(time, point);
    edit.Touch(tracker);
    tracker->SetDestinationLayerID(layer->ID());
    PasteKeyFrames(project, position, keys, keys.front().Time());
    if (tolerance > 0)
        SimplifyKeyFrames(project, position, tolerance, {keys.front().Time(), keys.back().Time()});
    edit.Commit();
}

} // namespace marlet::project
