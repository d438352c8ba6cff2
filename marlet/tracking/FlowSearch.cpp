#include <marlet/tracking/FeatureSearch.h>

#include <marlet/foundation/Numbers.h>
#include <marlet/platform/flow/OpticalFlow.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

/// How often a region can be halved before too little of it is left.
int PyramidLevels(int smallerSide)
{
    int levels = 1;
    for (int side = 32; levels < 5 && side <= smallerSide; side *= 2)
        ++levels;
    return levels;
}

} // namespace

FoundFeature SearchByOpticalFlow(const SearchRegion &region, const TrackingOptions &options)
{
    const platform::PixelRegion &picture = region.previous;
    const FoundFeature lost{region.x, region.y, false, kLargestError};
    const bool isInside = region.x >= 0 && region.x < static_cast<float>(picture.width) && region.y >= 0 &&
                          region.y < static_cast<float>(picture.height);
    if (!isInside)
        return lost;

    const platform::OpticalFlowSettings settings = {
        .windowSize = Truncate<int>(std::max(region.featureWidth, region.featureHeight)),
        .levels = PyramidLevels(std::min(picture.width, picture.height)),
        .maxIterations = options.maxIterations};
    const platform::OpticalFlowPoint point =
        platform::FollowPoint(picture, region.next, region.x, region.y, settings);
    return {point.x, point.y, point.isFound, point.isFound ? point.error : kLargestError};
}

} // namespace marlet::project
