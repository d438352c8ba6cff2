#pragma once

#include <marlet/foundation/KyPoint.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingActiveObject.h>

namespace marlet::project
{

/// A frame in memory: rows without padding, 1 or 4 bytes to the pixel. Not owned.
struct TrackingImage {
    const unsigned char *pixels = nullptr;
    int width = 0;
    int height = 0;
    int bytesPerPixel = 1;
};

/// What a tracking point gives for one time.
struct TrackingRectangles {
    kytl::matl::KyPoint<2, float> featurePosition;
    kytl::matl::KyPoint<2, float> featureSize;
    kytl::matl::KyPoint<2, float> searchPosition; ///< an offset from the feature
    kytl::matl::KyPoint<2, float> searchSize;
};

struct FeatureMatch {
    kytl::matl::KyPoint<2, float> position;
    bool isLost = false;
};

/// Finds a feature of one frame in the next. Whatever the rectangles are, nothing outside of the frames is
/// read; what makes no sense, such as frames of different sizes, is a lost match. Internal.
FeatureMatch MatchFeature(const TrackingImage &previous, const TrackingImage &next,
                          const TrackingRectangles &rectangles, Tracker::TrackerMethod method,
                          const TrackingOptions &options);

} // namespace marlet::project
