#pragma once

#include <marlet/foundation/Export.h>
#include <marlet/foundation/Strings.h>
#include <marlet/operations/layers/PictureRectangle.h>

#include <memory>

namespace marlet::project
{

class AbstractLayer;
class AssetLayer;
class Project;
class Tracker;

// Trackers and what comes of them, as one Edit each. Null pointers are std::invalid_argument. Belongs to the
// thread that edits the project.

/// A tracker of the feature, which is looked for in the search area around it. It comes behind those that are
/// there.
/// @throws OperationException if the feature has no size, or the search area is smaller
MARLET_EXPORT std::shared_ptr<Tracker> AddTracker(const std::shared_ptr<Project> &project,
                                                  const std::shared_ptr<AssetLayer> &layer,
                                                  const WideString &name, const PictureRectangle &feature,
                                                  const PictureRectangle &search);

/// Has a layer of the same composition follow the path of the tracker's primary point: its "position" gets a
/// key frame for each of the path's, at which its anchor point lies on the feature, as its parents and the
/// tracked layer stand at that time. What key frames it had there go. Those that are not needed to stay
/// within a tolerance in pixels are left out again, unless that is 0. A flat layer keeps its depth. The layer
/// becomes the tracker's destination.
/// @throws OperationException if there is no path, if the tracker is on no layer of the composition, if its
/// asset is missing, or the layer moves the tracked one
MARLET_EXPORT void FollowTracker(const std::shared_ptr<Project> &project,
                                 const std::shared_ptr<Tracker> &tracker,
                                 const std::shared_ptr<AbstractLayer> &layer, double tolerance);

/// What a layer takes over of a tracker of two points, beside the path of the first.
struct FollowOptions {
    double tolerance = 0;  ///< in pixels, at the second point too
    bool rotation = false; ///< "rotationZ" turns as the line from one point to the other does
    bool scale = false;    ///< "scale" grows as the distance of the points does
};
/// The same. Both start from the values that the layer has at the first of the times.
/// @throws OperationException also for rotation or scale of a tracker that has not two points with paths, or
/// has both in one place
MARLET_EXPORT void FollowTracker(const std::shared_ptr<Project> &project,
                                 const std::shared_ptr<Tracker> &tracker,
                                 const std::shared_ptr<AbstractLayer> &layer, const FollowOptions &options);

} // namespace marlet::project
