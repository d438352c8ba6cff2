#pragma once

#include <marlet/platform/flow/PixelRegion.h>
#include <marlet/tracking/TrackingActiveObject.h>

namespace marlet::project
{

/// What is left of two frames to look for a feature in, and where it was. Coordinates count from the region's
/// top left pixel, rows downwards.
struct SearchRegion {
    platform::PixelRegion previous;
    platform::PixelRegion next; ///< the same place in the next frame
    int left = 0;               ///< pixels of the frames before the region
    int top = 0;
    float x = 0; ///< middle of the feature in the previous frame
    float y = 0;
    float featureWidth = 0;
    float featureHeight = 0;
};

struct FoundFeature {
    float x = 0;
    float y = 0;
    bool isFound = true;
    float error = 0; ///< what TrackingOptions::errorTolerance * 100 is compared with
};

/// The error where there is nothing to measure one by.
constexpr float kLargestError = 9999.9f;

/// The region has at least one pixel, the feature at least one pixel in width and height.
FoundFeature SearchByOpticalFlow(const SearchRegion &region, const TrackingOptions &options);
/// The same.
FoundFeature SearchByTemplate(const SearchRegion &region, const TrackingOptions &options);

} // namespace marlet::project
