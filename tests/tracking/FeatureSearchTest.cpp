// The arithmetic of both searches, against slow ways of working it out.

#include <marlet/platform/flow/OpticalFlow.h>
#include <marlet/tracking/FeatureMatch.h>
#include <marlet/tracking/FeatureSearch.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace marlet::project
{

namespace
{

using Method = Tracker::TrackerMethod;
using Point = kytl::matl::KyPoint<2, float>;

struct Picture {
    int width;
    int height;
    int channels = 1;
    std::vector<unsigned char> bytes =
        std::vector<unsigned char>(static_cast<std::size_t>(width) * height * channels);

    unsigned char &At(int column, int row, int channel = 0)
    {
        return bytes[static_cast<std::size_t>((row * width + column) * channels + channel)];
    }
    int At(int column, int row, int channel = 0) const
    {
        return bytes[static_cast<std::size_t>((row * width + column) * channels + channel)];
    }
    TrackingImage Image() const { return {bytes.data(), width, height, channels}; }
    platform::PixelRegion Region(int size) const
    {
        return {bytes.data(), size, size, width * channels, channels};
    }
};

/// Noise, and the same moved by (dx, dy) with some more noise.
std::pair<Picture, Picture> Noise(int width, int height, int channels, int dx, int dy, std::mt19937 &random)
{
    Picture first{width, height, channels}, second{width, height, channels};
    for (unsigned char &byte : first.bytes)
        byte = static_cast<unsigned char>(20 + random() % 200);
    for (int row = 0; row < height; ++row)
        for (int column = 0; column < width; ++column)
            for (int channel = 0; channel < channels; ++channel)
                second.At(column, row, channel) = static_cast<unsigned char>(
                    first.At((column - dx + width) % width, (row - dy + height) % height, channel) +
                    static_cast<int>(random() % 31) - 15);
    return {first, second};
}

/// Textures of smooth random levels, a cell of some pixels apart.
class SmoothTexture
{
public:
    SmoothTexture(int cell, std::mt19937 &random) : cell_(cell)
    {
        for (double &level : levels_)
            level = static_cast<double>(random() % 256);
    }
    double At(double x, double y) const
    {
        const double column = x / cell_ + 20, row = y / cell_ + 20;
        const int u = static_cast<int>(column), v = static_cast<int>(row);
        return std::lerp(std::lerp(Level(u, v), Level(u + 1, v), column - u),
                         std::lerp(Level(u, v + 1), Level(u + 1, v + 1), column - u), row - v);
    }

private:
    static constexpr int kSide = 64;
    double Level(int column, int row) const
    {
        return levels_[static_cast<std::size_t>(row * kSide + column)];
    }

    int cell_;
    std::vector<double> levels_ = std::vector<double>(kSide * kSide);
};

Picture Draw(const SmoothTexture &texture, int side, double dx, double dy)
{
    Picture picture{side, side};
    for (int row = 0; row < side; ++row)
        for (int column = 0; column < side; ++column)
            picture.At(column, row) =
                static_cast<unsigned char>(std::lround(texture.At(column - dx, row - dy)));
    return picture;
}

/// A search along one axis, all in the pixels of the frame.
struct Axis {
    int first, last; ///< of the region, the last exclusive
    int pattern;     ///< where the pattern begins in the frame before
    int patternSize;
    int size; ///< of the frame
    float feature;
    float middle; ///< of the feature, from the region's first pixel

    Axis(int frame, float position, float featureSize, float searchMiddle, float searchSize)
        : size(frame), feature(featureSize)
    {
        first = static_cast<int>(static_cast<float>(frame - 1) - featureSize / 2);
        last = static_cast<int>(featureSize / 2 + 1);
        first = std::max(
            static_cast<int>(std::min<float>(static_cast<float>(first), searchMiddle - searchSize / 2)), 0);
        last = std::min(
            static_cast<int>(std::max<float>(static_cast<float>(last), searchMiddle + searchSize / 2)),
            frame);
        middle = position - static_cast<float>(first);
        patternSize = static_cast<int>(featureSize);
        pattern = PatchAt(middle);
    }
    /// Of the frame, for a feature around a place of the region.
    int PatchAt(float place) const
    {
        const int length = last - first;
        int corner = static_cast<int>(std::floor(place - feature / 2));
        if (corner < 0)
            corner = 0;
        else if (static_cast<float>(corner) > static_cast<float>(length) - feature)
            corner = static_cast<int>(static_cast<float>(length - 1) - feature);
        return std::max(first + corner, 0);
    }
    /// The place in the frame of a pattern found at `best` of the region.
    float Found(int best, double offset) const
    {
        const float corner = middle - feature / 2;
        return static_cast<float>(first + best) + middle - std::floor(corner) + static_cast<float>(offset);
    }
};

/// The sum over all channels of the squared differences.
double SquaredDifference(const Picture &previous, const Picture &next, const Axis &x, const Axis &y,
                         int column, int row)
{
    column = std::clamp(column, 0, x.last - x.first - x.patternSize);
    row = std::clamp(row, 0, y.last - y.first - y.patternSize);
    double sum = 0;
    for (int v = 0; v < y.patternSize; ++v)
        for (int u = 0; u < x.patternSize; ++u)
            for (int channel = 0; channel < next.channels; ++channel)
                sum += std::pow(previous.At(x.pattern + u, y.pattern + v, channel) -
                                    next.At(x.first + column + u, y.first + row + v, channel),
                                2);
    return sum;
}

/// By a parabola on the steeper side.
template <class ScoreAt> double Offset(const ScoreAt &at)
{
    const double slope = at(1) - at(-1);
    if (slope == 0)
        return 0;
    const double fall = slope > 0 ? at(0) - at(2) + slope : at(0) - at(-2) - slope;
    return std::clamp(fall == 0 ? slope : slope / fall, -0.5, 0.5);
}

struct Slow {
    Point position;
    double error = 0;
    bool isClear = false; ///< no other place is nearly as good
};

Slow SlowMatch(const Picture &previous, const Picture &next, const TrackingRectangles &r)
{
    const float px = static_cast<float>(next.width / 2) + r.featurePosition.X;
    const float py = static_cast<float>(next.height / 2) - r.featurePosition.Y;
    const Axis x(next.width, px, r.featureSize.X, px + r.searchPosition.X, r.searchSize.X);
    const Axis y(next.height, py, r.featureSize.Y, py - r.searchPosition.Y, r.searchSize.Y);
    if (x.last - x.first < x.patternSize || y.last - y.first < y.patternSize)
        return {};
    const auto score = [&](int column, int row) {
        return SquaredDifference(previous, next, x, y, column, row);
    };
    double best = std::numeric_limits<double>::max(), second = best;
    int column = 0, row = 0;
    for (int v = 0; v <= y.last - y.first - y.patternSize; ++v)
        for (int u = 0; u <= x.last - x.first - x.patternSize; ++u) {
            const double sum = score(u, v);
            second = std::min(second, std::max(sum, best));
            if (sum < best)
                best = sum, column = u, row = v;
        }
    const float foundX = x.Found(column, Offset([&](int by) { return score(column + by, row); }));
    const float foundY = y.Found(row, Offset([&](int by) { return score(column, row + by); }));

    Slow slow;
    slow.isClear = second > 1.02 * best;
    slow.position = {foundX - static_cast<float>(next.width / 2),
                     static_cast<float>(next.height / 2) - foundY};
    const int matchColumn = x.PatchAt(foundX - static_cast<float>(x.first));
    const int matchRow = y.PatchAt(foundY - static_cast<float>(y.first));
    for (int v = 0; v < y.patternSize; ++v)
        for (int u = 0; u < x.patternSize; ++u)
            slow.error +=
                std::abs(previous.At(x.pattern + u, y.pattern + v) - next.At(matchColumn + u, matchRow + v));
    slow.error *= 200 / 256. / (r.featureSize.X * r.featureSize.Y);
    return slow;
}

} // namespace

TEST(FeatureSearch, ByTemplateFindsWhatASlowSearchFinds)
{
    std::mt19937 random(23);
    const auto number = [&](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(random);
    };
    int compared = 0;
    for (int i = 0; i < 600; ++i) {
        SCOPED_TRACE(i);
        const int channels = i % 2 == 0 ? 1 : 4;
        const auto [previous, next] = Noise(31, 26, channels, static_cast<int>(random() % 5) - 2,
                                            static_cast<int>(random() % 5) - 2, random);
        const TrackingRectangles rectangles = {{number(-18, 18), number(-15, 15)},
                                               {number(3, 9), number(3, 9)},
                                               {number(-4, 4), number(-4, 4)},
                                               {number(2, 20), number(2, 20)}};
        const Slow slow = SlowMatch(previous, next, rectangles);
        const auto match = [&, &before = previous, &after = next](double tolerance) {
            return MatchFeature(before.Image(), after.Image(), rectangles, Method::TemplateMatching,
                                {.errorTolerance = static_cast<float>(tolerance), .matchMethod = 0});
        };
        if (!slow.isClear)
            continue;
        ++compared;
        const FeatureMatch tolerated = match(slow.error * 1.001 / 100 + 1e-6);
        EXPECT_NEAR(tolerated.position.X, slow.position.X, 0.01);
        EXPECT_NEAR(tolerated.position.Y, slow.position.Y, 0.01);
        EXPECT_FALSE(tolerated.isLost);
        EXPECT_EQ(match(slow.error * 0.999 / 100 - 1e-6).isLost, true);
    }
    EXPECT_GT(compared, 250);
}

TEST(FeatureSearch, ByTemplateTakesAFeatureThatIsWiderByAFractionOfAPixel)
{
    // The region is the last three columns of the frame; the pattern begins one column before it. Rows are of
    // one level each, so that it is found in its own rows whatever columns it is compared with.
    std::mt19937 random(3);
    Picture previous{40, 30};
    for (int row = 0; row < previous.height; ++row)
        std::fill_n(&previous.At(0, row), previous.width, static_cast<unsigned char>(random() % 240));
    const TrackingRectangles atTheEdge = {{19, 0}, {3.5f, 3}, {0, 0}, {4, 30}};
    const TrackingOptions nothingTolerated = {.errorTolerance = 0, .matchMethod = 0};
    for (const int column : {35, 36, 38, 39}) {
        Picture next = previous;
        for (int row = 0; row < next.height; ++row)
            next.At(column, row) = static_cast<unsigned char>(next.At(column, row) + 10);
        EXPECT_EQ(MatchFeature(previous.Image(), next.Image(), atTheEdge, Method::TemplateMatching,
                               nothingTolerated)
                      .isLost,
                  column == 36 || column == 38)
            << column;
    }

    // As wide as the frame but for a fraction.
    const TrackingRectangles wide = {{0, 0}, {40.5f, 10}, {0, 0}, {60, 60}};
    const Picture noise = Noise(40, 30, 1, 0, 0, random).first;
    for (const Method method : {Method::TemplateMatching, Method::OpticalFlow})
        EXPECT_FALSE(MatchFeature(noise.Image(), noise.Image(), wide, method, {}).isLost);
}

TEST(FeatureSearch, ByFlowTakesWindowLevelsAndIterationsFromFeatureRegionAndOptions)
{
    std::mt19937 random(5);
    // Rough enough for small windows, smooth enough to be seen on coarse levels.
    const SmoothTexture texture(16, random);
    const Picture previous = Draw(texture, 260, 0, 0), next = Draw(texture, 260, 3, -2);
    const struct {
        int region;
        float featureWidth, featureHeight;
        int maxIterations;
        platform::OpticalFlowSettings expected;
    } cases[] = {{31, 9.9f, 5, 2, {9, 1, 2}},     {32, 5, 9.9f, 1, {9, 2, 1}},
                 {63, 21, 20, 3, {21, 2, 3}},     {64, 21, 20, 2, {21, 3, 2}},
                 {127, 21, 20, 2, {21, 3, 2}},    {128, 21, 20, 1, {21, 4, 1}},
                 {255, 21.5f, 20, 3, {21, 4, 3}}, {256, 21, 21.5f, 1, {21, 5, 1}}};
    for (const auto &row : cases) {
        SCOPED_TRACE(row.region);
        const float middle = static_cast<float>(row.region) / 2 + 0.25f;
        SearchRegion region = {.previous = previous.Region(row.region),
                               .next = next.Region(row.region),
                               .x = middle,
                               .y = middle,
                               .featureWidth = row.featureWidth,
                               .featureHeight = row.featureHeight};
        const FoundFeature found = SearchByOpticalFlow(region, {.maxIterations = row.maxIterations});
        const auto follow = [&](int window, int levels, int iterations) {
            const platform::OpticalFlowPoint point =
                platform::FollowPoint(region.previous, region.next, middle, middle,
                                      {row.expected.windowSize + window, row.expected.levels + levels,
                                       row.expected.maxIterations + iterations});
            return std::pair(point.x, point.y);
        };
        const std::pair place(found.x, found.y);
        EXPECT_EQ(place, follow(0, 0, 0));
        EXPECT_NE(place, follow(1, 0, 0));
        EXPECT_NE(place, follow(0, 1, 0));
        EXPECT_NE(place, follow(0, 0, 1));
    }
}

TEST(FeatureSearch, ByFlowLosesAPointInWhichThereIsNothingToSeeWhateverIsTolerated)
{
    const Picture plain{100, 100};
    EXPECT_TRUE(MatchFeature(plain.Image(), plain.Image(), {{1, 2}, {20, 20}, {}, {60, 60}},
                             Method::OpticalFlow, {.errorTolerance = 1e6f})
                    .isLost);
}

TEST(FeatureSearch, ByFlowFindsLargeFeaturesThatMoveFarInSmallRegions)
{
    constexpr int kSide = 160;
    constexpr int kTextures = 200;
    std::mt19937 random(1);
    int found = 0;
    for (int i = 0; i < kTextures; ++i) {
        const SmoothTexture texture(28, random);
        const double angle = 0.001 * static_cast<double>(random() % 6283);
        const double distance = 12 + 0.001 * static_cast<double>(random() % 32001);
        const double dx = distance * std::cos(angle), dy = distance * std::sin(angle);
        const Picture previous = Draw(texture, kSide, 0, 0), next = Draw(texture, kSide, dx, dy);
        const FeatureMatch match =
            MatchFeature(previous.Image(), next.Image(), {{0, 0}, {64, 64}, {0, 0}, {kSide, kSide}},
                         Method::OpticalFlow, {.errorTolerance = 1});
        found += std::hypot(match.position.X - dx, match.position.Y + dy) < 1;
    }
    EXPECT_GE(found, 195);
}

} // namespace marlet::project
