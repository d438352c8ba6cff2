#include <marlet/tracking/FeatureMatch.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace marlet::project
{

namespace
{

using Method = Tracker::TrackerMethod;
using Point = kytl::matl::KyPoint<2, float>;

constexpr Method kMethods[] = {Method::OpticalFlow, Method::TemplateMatching};
constexpr int kWidth = 240;
constexpr int kHeight = 200;

/// A memory of exactly the size of its picture, so that the address sanitizer sees each access beyond it.
struct Picture {
    int width;
    int height;
    int bytesPerPixel = 1;
    std::vector<unsigned char> bytes =
        std::vector<unsigned char>(static_cast<std::size_t>(width) * height * bytesPerPixel);

    TrackingImage Image() const { return {bytes.data(), width, height, bytesPerPixel}; }
};

/// Where the patch is in a frame, by the layer's coordinates, and how it lies.
struct Pose {
    double x = 0;
    double y = 0;
    double angle = 0; ///< radians
    double scale = 1;
};

/// Waves in all directions, without a period. A texture that is alike in all directions matters: template
/// matching refines each axis by itself.
double TextureAt(double u, double v)
{
    double sum = 0;
    for (int i = 0; i < 12; ++i)
        sum += std::sin((0.25 + 0.05 * i) * (u * std::cos(2.4 * i) + v * std::sin(2.4 * i)) + i * i);
    return 16 * sum;
}

/// A textured disc of radius 30 with a soft edge, before a plain ground.
Picture Draw(const Pose &pose, int noise, unsigned int seed)
{
    Picture picture{kWidth, kHeight};
    std::minstd_rand random(seed);
    std::size_t at = 0;
    for (int row = 0; row < kHeight; ++row) {
        for (int column = 0; column < kWidth; ++column, ++at) {
            const double dx = column - kWidth / 2 - pose.x;
            const double dy = row - kHeight / 2 + pose.y;
            const double u = (std::cos(pose.angle) * dx + std::sin(pose.angle) * dy) / pose.scale;
            const double v = (std::cos(pose.angle) * dy - std::sin(pose.angle) * dx) / pose.scale;
            const double edge = std::clamp(6 - std::hypot(u, v) / 5, 0., 1.);
            const double gray = std::clamp(128 + (edge > 0 ? TextureAt(u, v) * edge : 0), 10., 240.);
            const int level =
                static_cast<int>(std::lround(gray)) + static_cast<int>(random() % (2 * noise + 1));
            picture.bytes[at] = static_cast<unsigned char>(level - noise);
        }
    }
    return picture;
}

TrackingRectangles Rectangles(Point position)
{
    return {position, {64, 64}, {0, 0}, {100, 100}};
}

FeatureMatch Match(const Picture &previous, const Picture &next, const TrackingRectangles &rectangles,
                   Method method, const TrackingOptions &options = {})
{
    return MatchFeature(previous.Image(), next.Image(), rectangles, method, options);
}

Pose PoseOfFrame(int frame)
{
    return {29.7 * std::sin(0.07 * frame), 22.6 * std::sin(0.05 * frame), 0.05 * std::sin(0.03 * frame),
            1 + 0.03 * std::sin(0.04 * frame)};
}

} // namespace

TEST(FeatureMatch, StaysOnAPatchThatMovesTurnsAndGrowsForTwoHundredFrames)
{
    for (const auto &[method, tolerance] :
         {std::pair(Method::OpticalFlow, 1.), std::pair(Method::TemplateMatching, 0.5)}) {
        TrackingRectangles rectangles = Rectangles({});
        Picture previous = Draw(PoseOfFrame(0), 4, 1);
        for (int frame = 1; frame < 200; ++frame) {
            const Pose truth = PoseOfFrame(frame);
            const Picture next = Draw(truth, 4, static_cast<unsigned int>(frame + 1));
            const FeatureMatch match = Match(previous, next, rectangles, method);
            ASSERT_FALSE(match.isLost) << static_cast<int>(method) << ", frame " << frame;
            ASSERT_LT(std::hypot(match.position.X - truth.x, match.position.Y - truth.y), tolerance)
                << static_cast<int>(method) << ", frame " << frame;
            rectangles.featurePosition = match.position;
            previous = next;
        }
    }
}

TEST(FeatureMatch, LooksForTheFeatureInTheSearchAreaAndCountsItsOffsetUpwards)
{
    const Picture previous = Draw({}, 0, 1);
    const Picture next = Draw({.x = 3.25, .y = 30}, 0, 1);
    for (const float offset : {15.f, -15.f}) {
        const TrackingRectangles rectangles = {{0, 0}, {64, 64}, {0, offset}, {80, 110}};
        const FeatureMatch match = Match(previous, next, rectangles, Method::TemplateMatching);
        EXPECT_EQ(std::hypot(match.position.X - 3.25, match.position.Y - 30) < 0.1, offset > 0) << offset;
    }
}

/// Ten gray levels more are 10 / 256 * 200 = 7.8125 by the difference, and no change to a coefficient.
TEST(FeatureMatch, MeasuresTheErrorOfAllMethodsButTheLastByTheDifferenceOfThePatches)
{
    const Picture previous = Draw({}, 0, 1);
    Picture next = previous;
    for (unsigned char &level : next.bytes)
        level = static_cast<unsigned char>(level + 10);
    const struct {
        int matchMethod;
        float tolerance;
        bool isLost;
    } cases[] = {
        {5, 0.001f, false}, {7, 0.078f, true}, {7, 0.0782f, false}, {0, 0.078f, true}, {4, 0.0782f, false}};
    for (const auto &row : cases) {
        const TrackingOptions options = {.errorTolerance = row.tolerance, .matchMethod = row.matchMethod};
        EXPECT_EQ(Match(previous, next, Rectangles({0.5f, 0.5f}), Method::TemplateMatching, options).isLost,
                  row.isLost)
            << row.matchMethod << " " << row.tolerance;
    }
    // The flow's error is the mean difference itself.
    EXPECT_FALSE(
        Match(previous, next, Rectangles({}), Method::OpticalFlow, {.errorTolerance = 0.11f}).isLost);
    EXPECT_TRUE(Match(previous, next, Rectangles({}), Method::OpticalFlow, {.errorTolerance = 0.09f}).isLost);
}

TEST(FeatureMatch, LosesWhatMakesNoSense)
{
    constexpr float kNan = std::numeric_limits<float>::quiet_NaN();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const struct {
        const char *name;
        TrackingRectangles rectangles;
    } cases[] = {
        {"position is not finite", {{kNan, 0}, {20, 20}, {0, 0}, {60, 60}}},
        {"position off the picture", {{-400, 0}, {20, 20}, {0, 0}, {60, 60}}},
        {"feature of less than a pixel", {{0, 0}, {20, 0.5f}, {0, 0}, {60, 60}}},
        {"feature larger than the picture", {{0, 0}, {300, 300}, {0, 0}, {400, 400}}},
        {"search offset is not finite", {{0, 0}, {20, 20}, {0, kInfinity}, {60, 60}}},
        {"search area of negative size", {{0, 0}, {20, 20}, {0, 0}, {-60, 60}}},
        {"search area above the picture", {{0, 0}, {20, 20}, {0, 1000}, {60, 60}}},
    };
    const Picture picture = Draw({}, 0, 1);
    for (const auto &row : cases) {
        for (const Method method : kMethods)
            EXPECT_TRUE(Match(picture, picture, row.rectangles, method).isLost)
                << row.name << ", method " << static_cast<int>(method);
    }
    EXPECT_TRUE(MatchFeature({}, {}, Rectangles({}), Method::OpticalFlow, {}).isLost);
    EXPECT_TRUE(Match(picture, {kWidth, kHeight - 1}, Rectangles({}), Method::TemplateMatching,
                      {.errorTolerance = 100})
                    .isLost);
    // A feature that fits nowhere has an error that can still be tolerated.
    for (const Point size : {Point{300, 300}, Point{64, 230}})
        EXPECT_FALSE(Match(picture, picture, {{1, 2}, size, {}, {50, 50}}, Method::TemplateMatching,
                           {.errorTolerance = 100})
                         .isLost);
}

TEST(FeatureMatch, ReadsNothingOutsideOfThePictureWhateverTheRectangles)
{
    std::mt19937 random(7);
    const auto number = [&](float low, float high) {
        return std::uniform_real_distribution<float>(low, high)(random);
    };
    for (int i = 0; i < 3000; ++i) {
        Picture picture{1 + static_cast<int>(random() % 40), 1 + static_cast<int>(random() % 40),
                        i % 2 == 0 ? 1 : 4};
        for (unsigned char &byte : picture.bytes)
            byte = static_cast<unsigned char>(random());
        const TrackingRectangles rectangles = {{number(-30, 30), number(-30, 30)},
                                               {number(0, 42), number(0, 42)},
                                               {number(-40, 40), number(-40, 40)},
                                               {number(0, 90), number(0, 90)}};
        const TrackingOptions options = {
            .errorTolerance = 1000, .maxIterations = i % 40 - 5, .matchMethod = i % 8 - 1};
        const Method method = picture.bytesPerPixel == 4 ? Method::TemplateMatching : kMethods[i / 2 % 2];
        const FeatureMatch match = Match(picture, picture, rectangles, method, options);
        EXPECT_TRUE(std::isfinite(match.position.X) && std::isfinite(match.position.Y));
    }
}

} // namespace marlet::project
