#include <marlet/tracking/TrackingActiveObject.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/layers/AssetLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>
#include <marlet/tracking/TrackingPoint.h>
#include <marlet/tracking/TrackingRun.h>

#include <stdexcept>
#include <thread>

namespace marlet::project
{

struct TrackingActiveObject_Impl {
    TrackingActiveObject::OnFrame onFrame;
    TrackingActiveObject::OnFinish onFinish;
    std::atomic<bool> stop = false;
    std::thread thread;
};

namespace
{

using Point = TrackingActiveObject::Point;

TrackingRectangles RectanglesAt(const std::shared_ptr<const TrackingPoint> &point, int time)
{
    if (!point)
        throw std::logic_error("The tracker has no such tracking point");
    const auto value = [&](const char *name) {
        return boost::get<Point>(point->Animation().ValueAtTime(name, time));
    };
    return {.featurePosition = value("featurePosition"),
            .featureSize = value("featureDimensions"),
            .searchPosition = value("searchPosition"),
            .searchSize = value("searchDimensions")};
}

/// An empty pointer if the layer shows anything else.
std::shared_ptr<MediaAsset> MediaAssetOf(const AssetLayer &layer, const AssetList &assets)
{
    const std::shared_ptr<AbstractAsset> asset = layer.Asset(assets);
    if (!asset || asset->Type() != AssetType::Media)
        return {};
    return std::static_pointer_cast<MediaAsset>(asset);
}

} // namespace

TrackingActiveObject::TrackingActiveObject(OnFrame onFrame, OnFinish onFinish)
    : impl_(std::make_unique<TrackingActiveObject_Impl>())
{
    impl_->onFrame = std::move(onFrame);
    impl_->onFinish = std::move(onFinish);
}

TrackingActiveObject::~TrackingActiveObject()
{
    Stop();
}

TrackingActiveObject::StartResult
TrackingActiveObject::Start(Direction direction, Duration duration, const std::shared_ptr<Project> &project,
                            const std::shared_ptr<AssetLayer> &layer, int time,
                            const std::shared_ptr<Tracker> &tracker, const TrackingOptions &options)
{
    Stop();
    Require(project, "project");
    Require(layer, "layer");
    Require(tracker, "tracker");
    const int length = layer->Length();
    if (time < 0 || time >= length)
        return StartResult::TimeOutOfRange;
    if (time == (direction == Direction::Backwards ? 0 : length - 1))
        return StartResult::NothingToTrack;
    if (!layer->HasVideo())
        return StartResult::NoVideo;
    const AssetList &assets = project->Assets();
    const std::shared_ptr<MediaAsset> asset = MediaAssetOf(*layer, assets);
    const std::shared_ptr<MediaVideoStream> stream = asset ? asset->VideoStream() : nullptr;
    if (!stream)
        return StartResult::NoVideo;

    const int playhead = layer->PlayheadRelativeTime(assets);
    const TrackingSnapshot snapshot = {
        .options = options,
        .onFrame = impl_->onFrame,
        .onFinish = impl_->onFinish,
        .direction = direction,
        .duration = duration,
        .frameRate = layer->ParentComposition(assets)->Settings().FrameRate(),
        .assetStart = layer->AssetInstanceStart(),
        .time = time,
        .length = length,
        .asset = asset,
        .stream = stream,
        .method = tracker->Method(),
        .type = tracker->Type(),
        .primary = RectanglesAt(tracker->PrimaryTrackingPoint(), playhead),
        .secondary = RectanglesAt(tracker->SecondaryTrackingPoint(), playhead),
    };
    impl_->onFrame(time, snapshot.primary.featurePosition, snapshot.secondary.featurePosition);
    impl_->stop = false;
    impl_->thread = std::thread(RunTracking, snapshot, std::cref(impl_->stop));
    return StartResult::Started;
}

void TrackingActiveObject::Stop()
{
    if (!impl_->thread.joinable())
        return;
    impl_->stop = true;
    impl_->thread.join();
}

} // namespace marlet::project
