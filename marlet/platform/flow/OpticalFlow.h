#pragma once

#include <marlet/platform/flow/PixelRegion.h>

namespace marlet::project::platform
{

struct OpticalFlowSettings {
    int windowSize = 0; ///< pixels of the finest level; one below 3 is taken as 3
    int levels = 1;     ///< of the pyramid, the picture itself included
    int maxIterations = 0;
};

struct OpticalFlowPoint {
    float x = 0;
    float y = 0;
    bool isFound = false;
    float error = 0; ///< mean difference of the windows around the old and the new point, in gray levels
};

/// Where a point of one gray picture is in another of the same size, by the pyramidal method of Lucas and
/// Kanade. The point must lie in the picture. One that is not found is where the search has left it.
/// @throws std::exception if there is no memory
OpticalFlowPoint FollowPoint(const PixelRegion &previous, const PixelRegion &next, float x, float y,
                             const OpticalFlowSettings &settings);

} // namespace marlet::project::platform
