#pragma once

#include "Handles.h"

#include <marlet/tracking/TrackingActiveObject.h>

#include <string>
#include <vector>

namespace marlet::python
{

/// What a run of a tracker found.
struct TrackedPath {
    std::vector<int> frames; ///< counted from the start of the layer
    std::vector<TrackingActiveObject::Point> primary;
    std::vector<TrackingActiveObject::Point> secondary;
    std::string reason; ///< why it ended
};

struct TrackingOrder {
    int frame = 0;
    bool backwards = false;
    bool oneFrame = false;
    TrackingOptions options;
};

/// Follows the features of a tracker without the interpreter's lock, until the run has ended or Python has a
/// signal. Changes nothing of the project.
/// @throws Failure OperationError if it cannot start; what a handler of a signal raises
TrackedPath RunTracker(const std::shared_ptr<Project> &project, const std::shared_ptr<AssetLayer> &layer,
                       const std::shared_ptr<Tracker> &tracker, const TrackingOrder &order);

} // namespace marlet::python
