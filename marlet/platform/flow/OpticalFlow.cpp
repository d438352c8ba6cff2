#include <marlet/platform/flow/OpticalFlow.h>

#include <marlet/platform/flow/MatOfRegion.h>

#include <opencv2/video/tracking.hpp>

#include <algorithm>
#include <vector>

namespace marlet::project::platform
{

OpticalFlowPoint FollowPoint(const PixelRegion &previous, const PixelRegion &next, float x, float y,
                             const OpticalFlowSettings &settings)
{
    constexpr int kSmallestWindow = 3;
    constexpr double kSmallestStep = 0.0001;
    const int windowSize = std::max(settings.windowSize, kSmallestWindow);
    const std::vector<cv::Point2f> from{{x, y}};
    std::vector<cv::Point2f> to;
    std::vector<unsigned char> found;
    std::vector<float> errors;
    cv::calcOpticalFlowPyrLK(
        MatOfRegion(previous), MatOfRegion(next), from, to, found, errors, {windowSize, windowSize},
        settings.levels - 1,
        {cv::TermCriteria::COUNT | cv::TermCriteria::EPS, settings.maxIterations, kSmallestStep});
    return {to[0].x, to[0].y, found[0] != 0, errors[0]};
}

} // namespace marlet::project::platform
