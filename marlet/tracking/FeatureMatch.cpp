#include <marlet/tracking/FeatureMatch.h>

#include <marlet/foundation/Numbers.h>
#include <marlet/tracking/FeatureSearch.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <optional>

namespace marlet::project
{

namespace
{

using Point = kytl::matl::KyPoint<2, float>;

bool IsFinite(const Point &point)
{
    return std::isfinite(point.X) && std::isfinite(point.Y);
}

bool MakeSense(const TrackingRectangles &rectangles)
{
    const Point &feature = rectangles.featureSize;
    const Point &search = rectangles.searchSize;
    return IsFinite(rectangles.featurePosition) && IsFinite(feature) && IsFinite(rectangles.searchPosition) &&
           IsFinite(search) && feature.X >= 1 && feature.Y >= 1 && search.X > 0 && search.Y > 0;
}

bool AreAlike(const TrackingImage &first, const TrackingImage &second)
{
    return first.width == second.width && first.height == second.height &&
           first.bytesPerPixel == second.bytesPerPixel;
}

/// Such a feature is in no region, and the flow's memory would grow with it.
bool IsLargerThanTheFrame(const Point &featureSize, const TrackingImage &frame)
{
    return Truncate<int>(std::max(featureSize.X, featureSize.Y)) > std::max(frame.width, frame.height);
}

/// First and last of the pixels of an axis that are looked at, the last exclusive.
struct Span {
    int first = 0;
    int last = 0;
};

/// Reaches at least to where the middle of a whole feature can lie at either border, however small the search
/// area is and wherever it is.
Span SearchSpan(int imageSize, float featureSize, float searchMiddle, float searchSize)
{
    const int first = Truncate<int>(static_cast<float>(imageSize - 1) - featureSize * 0.5f);
    const int last = Truncate<int>(featureSize * 0.5f + 1);
    const float searchFirst = searchMiddle - searchSize * 0.5f;
    const float searchLast = searchMiddle + searchSize * 0.5f;
    return {
        std::max(searchFirst < static_cast<float>(first) ? Truncate<int>(searchFirst) : first, 0),
        std::min(searchLast > static_cast<float>(last) ? Truncate<int>(searchLast) : last, imageSize),
    };
}

platform::PixelRegion RegionOf(const TrackingImage &image, const Span &columns, const Span &rows)
{
    const platform::PixelRegion whole = {image.pixels, image.width, image.height,
                                         image.width * image.bytesPerPixel, image.bytesPerPixel};
    return whole.Crop(columns.first, rows.first, columns.last - columns.first, rows.last - rows.first);
}

/// Nothing if the search ran out of memory.
std::optional<FoundFeature> Search(const SearchRegion &region, Tracker::TrackerMethod method,
                                   const TrackingOptions &options)
try {
    return method == Tracker::TrackerMethod::TemplateMatching ? SearchByTemplate(region, options)
                                                              : SearchByOpticalFlow(region, options);
} catch (const std::exception &) {
    return {};
}

} // namespace

FeatureMatch MatchFeature(const TrackingImage &previous, const TrackingImage &next,
                          const TrackingRectangles &rectangles, Tracker::TrackerMethod method,
                          const TrackingOptions &options)
{
    const FeatureMatch lost{rectangles.featurePosition, true};
    if (!MakeSense(rectangles) || !AreAlike(previous, next))
        return lost;

    const float middleX = static_cast<float>(previous.width / 2);
    const float middleY = static_cast<float>(previous.height / 2);
    const float x = middleX + rectangles.featurePosition.X;
    const float y = middleY - rectangles.featurePosition.Y;
    const Span columns = SearchSpan(previous.width, rectangles.featureSize.X, x + rectangles.searchPosition.X,
                                    rectangles.searchSize.X);
    const Span rows = SearchSpan(previous.height, rectangles.featureSize.Y, y - rectangles.searchPosition.Y,
                                 rectangles.searchSize.Y);
    if (columns.first >= columns.last || rows.first >= rows.last)
        return lost;

    const float left = static_cast<float>(columns.first);
    const float top = static_cast<float>(rows.first);
    const SearchRegion region = {.previous = RegionOf(previous, columns, rows),
                                 .next = RegionOf(next, columns, rows),
                                 .left = columns.first,
                                 .top = rows.first,
                                 .x = x - left,
                                 .y = y - top,
                                 .featureWidth = rectangles.featureSize.X,
                                 .featureHeight = rectangles.featureSize.Y};
    const std::optional<FoundFeature> found = IsLargerThanTheFrame(rectangles.featureSize, previous)
                                                  ? FoundFeature{region.x, region.y, true, kLargestError}
                                                  : Search(region, method, options);
    if (!found || !std::isfinite(found->x) || !std::isfinite(found->y))
        return lost;

    const bool hasNotMoved = found->x == region.x && found->y == region.y;
    // Written so that a tolerance that is no number tolerates nothing.
    const bool isTolerated = found->error <= options.errorTolerance * 100;
    return {{(found->x - middleX) + left, 0 - ((found->y - middleY) + top)},
            (!found->isFound && hasNotMoved) || !isTolerated};
}

} // namespace marlet::project
