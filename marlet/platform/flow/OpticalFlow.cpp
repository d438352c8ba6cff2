#include <marlet/platform/flow/OpticalFlow.h>

#include <marlet/platform/flow/MatOfRegion.h>

#include <opencv2/imgproc.hpp>
#include <opencv2/video/tracking.hpp>

#include <algorithm>
#include <cmath>
#include <vector>

namespace marlet::project::platform
{

namespace
{

/// The region itself, and each level at half the size of the one before.
std::vector<cv::Mat> Pyramid(const PixelRegion &region, int levels)
{
    std::vector<cv::Mat> pyramid(static_cast<std::size_t>(std::max(levels, 1)));
    pyramid.front() = MatOfRegion(region);
    for (std::size_t level = 1; level < pyramid.size(); ++level)
        cv::pyrDown(pyramid[level - 1], pyramid[level]);
    return pyramid;
}

/// The pixels of a row of `size` that are still in it after moving.
cv::Range WhatStays(int size, float move)
{
    const float length = static_cast<float>(size);
    const int first = cvCeil(std::clamp(-move, 0.f, length));
    const int last = cvFloor(std::clamp(length - move, 0.f, length));
    return {first, std::max(first, last)};
}

/// The search on one level. It goes by the slopes of the previous picture, step by step, so that those count
/// alone whose pixels are in the next picture too: beyond its edge there is nothing to compare them with.
class LevelSearch
{
public:
    LevelSearch(const cv::Mat &previous, const cv::Mat &next, int windowSize)
        : window_(windowSize, windowSize)
    {
        cv::buildOpticalFlowPyramid(previous, previous_, window_, 0, true);
        cv::buildOpticalFlowPyramid(next, next_, window_, 0, false);
        slopes_ = previous_[1].clone();
    }

    /// Where the point is, looked for from `start` on.
    OpticalFlowPoint Follow(const cv::Point2f &from, const cv::Point2f &start, int maxIterations)
    {
        constexpr double kSmallestStep = 0.0001;
        constexpr int kMostIterations = 100;
        to_ = {start};
        near_ = Near(from);
        for (int i = std::min(maxIterations, kMostIterations); i > 0; --i) {
            const cv::Point2f last = to_[0];
            Step(from, 1);
            if (!found_[0] || cv::norm(to_[0] - last) <= kSmallestStep)
                break;
        }
        if (errors_.empty())
            Step(from, 0);
        return {to_[0].x, to_[0].y, found_[0] != 0, errors_[0]};
    }

private:
    /// The slopes that are looked at: those of the window, and one more on each side to interpolate with.
    cv::Rect Near(const cv::Point2f &from) const
    {
        const cv::Point corner(cvFloor(from.x) - window_.width / 2 - 1,
                               cvFloor(from.y) - window_.height / 2 - 1);
        return cv::Rect(corner, window_ + cv::Size(3, 3)) & cv::Rect({}, slopes_.size());
    }

    void Step(const cv::Point2f &from, int iterations)
    {
        const cv::Point2f move = to_[0] - from;
        const cv::Range rows = WhatStays(slopes_.rows, move.y), columns = WhatStays(slopes_.cols, move.x);
        const cv::Rect stays = near_ & cv::Rect(columns.start, rows.start, columns.size(), rows.size());
        previous_[1](near_).setTo(0);
        slopes_(stays).copyTo(previous_[1](stays));
        cv::calcOpticalFlowPyrLK(previous_, next_, std::vector{from}, to_, found_, errors_, window_, 0,
                                 {cv::TermCriteria::COUNT, iterations, 0}, cv::OPTFLOW_USE_INITIAL_FLOW);
    }

    cv::Size window_;
    std::vector<cv::Mat> previous_; ///< the picture and its slopes
    std::vector<cv::Mat> next_;
    cv::Mat slopes_;
    cv::Rect near_;
    std::vector<cv::Point2f> to_;
    std::vector<unsigned char> found_;
    std::vector<float> errors_;
};

} // namespace

OpticalFlowPoint FollowPoint(const PixelRegion &previous, const PixelRegion &next, float x, float y,
                             const OpticalFlowSettings &settings)
{
    constexpr int kSmallestWindow = 3;
    const int windowSize = std::max(settings.windowSize, kSmallestWindow);
    const std::vector<cv::Mat> before = Pyramid(previous, settings.levels);
    const std::vector<cv::Mat> after = Pyramid(next, settings.levels);
    // OpenCV's own way through the levels would leave out those that are no larger than the window.
    OpticalFlowPoint point;
    for (std::size_t level = before.size(); level-- > 0;) {
        const cv::Point2f from = cv::Point2f(x, y) / std::exp2(level);
        const bool isCoarsest = level + 1 == before.size();
        const cv::Point2f start = isCoarsest ? from : cv::Point2f(point.x, point.y) * 2;
        point =
            LevelSearch(before[level], after[level], windowSize).Follow(from, start, settings.maxIterations);
    }
    return point;
}

} // namespace marlet::project::platform
