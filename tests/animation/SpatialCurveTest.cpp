#include <tests/support/OddCurves.h>

#include <marlet/animation/SpatialCurve.h>

#include <gtest/gtest.h>

#include <numeric>

namespace marlet::test
{
namespace
{

using namespace project;

/// Four key frames at the corners of a path, 100 apart in time.
std::shared_ptr<PropertyManager> PathManager(const std::vector<Point2D> &points)
{
    auto manager = PropertyManager::Create();
    manager->CreateSpatialProperty("p", Point2D{}, PropertyManager::Type::Animatable, nullptr);
    int time = 0;
    for (const Point2D &point : points) {
        manager->KeyFrames("p").Add(KeyFrame(time, point));
        time += 100;
    }
    return manager;
}

const std::vector<Point2D> kCorners = {{0, 0}, {100, 0}, {100, 300}, {-50, 300}};

TEST(SpatialCurveTest, StraightTimingMovesAtAnEvenSpeed)
{
    const auto manager = PathManager(kCorners);
    for (int piece = 0; piece < 3; ++piece) {
        std::vector<float> steps;
        for (int time = piece * 100; time < piece * 100 + 100; time += 10) {
            // In tiny steps, so that the way and not the chord is measured.
            const auto at = [&](int t) { return boost::get<Point2D>(manager->ValueAtTime("p", t)); };
            float length = 0;
            for (int t = time; t < time + 10; ++t)
                length += std::hypot(at(t + 1).X - at(t).X, at(t + 1).Y - at(t).Y);
            steps.push_back(length);
        }
        const float mean = std::accumulate(steps.begin(), steps.end(), 0.0f) / 10;
        for (const float step : steps)
            EXPECT_NEAR(step, mean, mean * 0.02f) << "piece " << piece;
    }
}

std::string Failure(const KeyFrameList &list, int first, int second)
{
    try {
        const double s = list.ParamTforSpatialCurveLength(list.At(first), list.At(second), 0.5);
        return s > 0 && s < 1 ? "none" : "no parameter";
    } catch (const std::runtime_error &error) {
        return error.what();
    }
}

constexpr char kNotBuilt[] = "Curve piece key not found in spatial cache";
constexpr char kNoLength[] = "Curve piece length has not been cached";

TEST(SpatialCurveTest, TheParameterBelongsToTheLastEvaluationAndIsNeverBuiltByAsking)
{
    const auto manager = PathManager(kCorners);
    KeyFrameList &list = manager->KeyFrames("p");
    EXPECT_EQ(Failure(list, 100, 200), kNotBuilt);
    EXPECT_EQ(list.ParamTforSpatialCurveLength(list.At(100), list.At(200), 1.0), 1.0)
        << "the end needs no table";
    manager->ValueAtTime("p", 150);
    EXPECT_EQ(Failure(list, 100, 200), "none");
    EXPECT_EQ(Failure(list, 200, 300), kNotBuilt);
    EXPECT_EQ(Failure(list, 100, 300), kNotBuilt) << "they are no neighbours";
    EXPECT_EQ(list.ParamTforSpatialCurveLength(list.At(100), list.At(200), 0), 0);
    EXPECT_EQ(Failure(KeyFrameList(list), 100, 200), "none") << "a copy has the table";

    list.At(300).SetValue(Point2D{1, 1});
    EXPECT_EQ(Failure(list, 100, 200), kNotBuilt) << "the tangent at 200 has changed";
    manager->ValueAtTime("p", 150);
    EXPECT_EQ(Failure(list, 100, 200), "none");
    list.Remove(100000);
    EXPECT_EQ(Failure(list, 100, 200), kNotBuilt) << "removing drops all tables";
    list.Set(200, Point2D{100, 0});
    EXPECT_EQ(Failure(list, 100, 200), kNoLength);
}

TEST(SpatialCurveTest, TheTableOfTwoKeyFramesIsBuiltThoughTheyRunAlongTheLine)
{
    const auto manager = PathManager({{0, 0}, {100, 50}});
    EXPECT_EQ(boost::get<Point2D>(manager->ValueAtTime("p", 25)), (Point2D{25, 12.5f}));
    EXPECT_EQ(Failure(manager->KeyFrames("p"), 0, 100), "none");
}

TEST(SpatialCurveTest, TangentsAreAsTheLastEvaluationLeftThem)
{
    const auto manager = PathManager({{0, 0}, {100, 0}, {100, 100}, {0, 100}});
    KeyFrameList &list = manager->KeyFrames("p");
    EXPECT_EQ(list.At(100).SpatialOutgoingTangent(), SpatialVector());
    manager->ValueAtTime("p", 50);
    EXPECT_EQ(list.At(100).SpatialOutgoingTangent(), (SpatialVector{25, 25, 0}));
    EXPECT_TRUE(list.At(200).IsSpatialCurveDirty()) << "nobody asked for its pieces";
    list.At(200).SetValue(Point2D{200, 0});
    EXPECT_EQ(list.At(100).SpatialOutgoingTangent(), (SpatialVector{25, 25, 0}));
    manager->ValueAtTime("p", 50);
    EXPECT_EQ(list.At(100).SpatialOutgoingTangent(), (SpatialVector{50, 0, 0}));
}

} // namespace
} // namespace marlet::test
