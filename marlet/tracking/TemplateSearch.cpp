#include <marlet/tracking/FeatureSearch.h>

#include <marlet/foundation/Numbers.h>
#include <marlet/platform/flow/TemplateScores.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace marlet::project
{

namespace
{

using platform::TemplateMeasure;
using platform::TemplateScores;

TemplateMeasure MeasureOf(int matchMethod)
{
    const TemplateMeasure last = TemplateMeasure::CoefficientNormed;
    return matchMethod >= 0 && matchMethod <= static_cast<int>(last) ? TemplateMeasure{matchMethod} : last;
}

/// The first column (or row) of a patch whose corner is asked to be at `corner`, so that it lies in the
/// frame, of which there are `before` pixels before the region.
int LimitCorner(float corner, int regionSize, float featureSize, int before)
{
    const float size = static_cast<float>(regionSize);
    if (!(corner >= 0))
        return 0;
    if (corner > size - featureSize) {
        // Below 0 where the feature fits by its whole pixels only.
        return std::max(Truncate<int>((size - 1) - featureSize), -before);
    }
    return Truncate<int>(corner);
}

platform::PixelRegion PatchAt(const platform::PixelRegion &picture, float cornerX, float cornerY,
                              const SearchRegion &region)
{
    return picture.Crop(LimitCorner(std::floor(cornerX), picture.width, region.featureWidth, region.left),
                        LimitCorner(std::floor(cornerY), picture.height, region.featureHeight, region.top),
                        Truncate<int>(region.featureWidth), Truncate<int>(region.featureHeight));
}

/// How far the true peak lies beside the best place of a row or column of scores. Exact where the scores fall
/// off along a parabola as well as where they fall off along two straight lines.
template <class ScoreAt> float SubPixelOffset(int best, int last, const ScoreAt &scoreAt)
{
    const auto score = [&](int place) { return scoreAt(std::clamp(place, 0, last)); };
    const float slope = score(best + 1) - score(best - 1);
    float offset = 0;
    if (slope > 0 || slope < 0) {
        const float fall =
            slope > 0 ? (score(best) - score(best + 2)) + slope : (score(best) - score(best - 2)) - slope;
        offset = fall == 0 ? slope : slope / fall;
    }
    return std::clamp(offset, -0.5f, 0.5f);
}

/// In gray levels, or by the first channel. Sums in float would lose the small differences of large patches.
float PatchError(const platform::PixelRegion &first, const platform::PixelRegion &second,
                 const SearchRegion &region)
{
    std::int64_t sum = 0;
    for (int row = 0; row < first.height; ++row) {
        for (int column = 0; column < first.width; ++column)
            sum += std::abs(*first.At(column, row) - *second.At(column, row));
    }
    constexpr float kGrayLevel = 0.00390625f;
    return static_cast<float>(sum) * kGrayLevel / (region.featureWidth * region.featureHeight) * 200;
}

} // namespace

FoundFeature SearchByTemplate(const SearchRegion &region, const TrackingOptions &options)
{
    const platform::PixelRegion &picture = region.previous;
    if (picture.width < Truncate<int>(region.featureWidth) ||
        picture.height < Truncate<int>(region.featureHeight))
        return {region.x, region.y, true, kLargestError};

    const float halfWidth = region.featureWidth * 0.5f;
    const float halfHeight = region.featureHeight * 0.5f;
    const float cornerX = region.x - halfWidth;
    const float cornerY = region.y - halfHeight;
    const platform::PixelRegion pattern = PatchAt(picture, cornerX, cornerY, region);
    const TemplateScores scores =
        platform::MatchTemplate(region.next, pattern, MeasureOf(options.matchMethod));

    const int column = scores.bestColumn;
    const int row = scores.bestRow;
    const float dx =
        SubPixelOffset(column, scores.columns - 1, [&](int place) { return scores.At(place, row); });
    const float dy =
        SubPixelOffset(row, scores.rows - 1, [&](int place) { return scores.At(column, place); });

    // The template began at a whole pixel: what the feature lay beside it, it lies beside the new place.
    FoundFeature found;
    found.x = (halfWidth - std::floor(cornerX)) + cornerX + static_cast<float>(column) + dx;
    found.y = (halfHeight - std::floor(cornerY)) + cornerY + static_cast<float>(row) + dy;
    if (options.matchMethod == static_cast<int>(TemplateMeasure::CoefficientNormed)) {
        found.error = (1 - scores.At(column, row)) * 100;
    } else {
        const platform::PixelRegion match =
            PatchAt(region.next, found.x - halfWidth, found.y - halfHeight, region);
        found.error = PatchError(pattern, match, region);
    }
    return found;
}

} // namespace marlet::project
