#pragma once

#include "document/Document.h"
#include "output/Failure.h"

#include <marlet/tracking/TrackingActiveObject.h>

#include <functional>

namespace marlet::tool
{

/// What a run of a tracker is asked for.
struct TrackerJob {
    using Tracking = project::TrackingActiveObject;

    ProjectPointer project;
    AssetLayerPointer layer;
    TrackerPointer tracker;
    int from = 0; ///< frames since the layer's start
    Tracking::Direction direction = Tracking::Direction::Forwards;
    Tracking::Duration duration = Tracking::Duration::UntilEnd;
    project::TrackingOptions options;
};

/// That the layer lacks the frame to start from.
Failure OutsideOfLayer(const TrackerJob &job);

/// The frames that the job will come to at most, beside its first.
int FramesToDo(const TrackerJob &job);

struct TrackedFrame {
    int frame = 0; ///< since the layer's start
    project::TrackingActiveObject::Point primary;
    project::TrackingActiveObject::Point secondary;
};

/// Runs the job to its end and hands over each position, on the thread that calls. The run is stopped when
/// `isStopRequested` tells so, and before an exception of `onFrame` leaves.
/// @throws Failure if the run cannot start
project::TrackingActiveObject::FinishReason
RunTracker(const TrackerJob &job, const std::function<void(const TrackedFrame &)> &onFrame,
           const std::function<bool()> &isStopRequested);

} // namespace marlet::tool
