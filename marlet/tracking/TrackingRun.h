#pragma once

#include <marlet/tracking/FeatureMatch.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingActiveObject.h>

#include <atomic>
#include <memory>

namespace marlet::project
{

class MediaAsset;
class MediaVideoStream;

/// All that a run needs, so that it leaves project, layer and tracker alone.
struct TrackingSnapshot {
    TrackingOptions options;
    TrackingActiveObject::OnFrame onFrame;
    TrackingActiveObject::OnFinish onFinish;
    TrackingActiveObject::Direction direction;
    TrackingActiveObject::Duration duration;
    double frameRate;
    int assetStart;                          ///< the frame of the asset that the layer shows first
    int time;                                ///< the frame of the layer at which the run starts
    int length;                              ///< of the layer
    std::shared_ptr<const MediaAsset> asset; ///< the stream points at it
    std::shared_ptr<const MediaVideoStream> stream;
    Tracker::TrackerMethod method;
    Tracker::TrackerType type;
    TrackingRectangles primary;
    TrackingRectangles secondary;
};

/// Follows the features until there is a reason to finish, or until `stop` becomes true; reports each
/// position and, at last, the reason.
void RunTracking(TrackingSnapshot snapshot, const std::atomic<bool> &stop);

} // namespace marlet::project
