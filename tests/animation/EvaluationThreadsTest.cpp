#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <gtest/gtest.h>

#include <barrier>
#include <thread>

namespace marlet::test
{
namespace
{

using namespace project;

constexpr int kThreads = 4;

/// Runs a function on several threads that begin together.
void Together(const std::function<void(int thread)> &function)
{
    std::barrier start(kThreads);
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i)
        threads.emplace_back([&, i] {
            start.arrive_and_wait();
            function(i);
        });
    for (std::thread &thread : threads)
        thread.join();
}

/// What the curve answers at its times, asked for from another end by each thread.
std::vector<std::string> Answers(const OddCurve &curve, const PropertyManager &manager, int thread)
{
    const std::vector<int> times = curve.Times();
    std::vector<std::string> answers(times.size());
    for (std::size_t i = 0; i < times.size(); ++i) {
        const std::size_t place =
            (i + times.size() * static_cast<std::size_t>(thread) / kThreads) % times.size();
        const std::size_t at = thread % 2 == 0 ? place : times.size() - 1 - place;
        answers[at] = Exactly(manager.ValueAtTime("odd", times[at]));
    }
    return answers;
}

TEST(EvaluationThreadsTest, TheFirstEvaluationsMayComeFromManyThreadsAtOnce)
{
    for (const OddCurve &curve : OddCurves()) {
        const std::vector<std::string> expected = Answers(curve, *curve.Manager(), 0);
        const auto manager = curve.Manager();
        std::vector<std::string> answers[kThreads];
        Together([&](int thread) { answers[thread] = Answers(curve, *manager, thread); });
        for (const std::vector<std::string> &each : answers)
            EXPECT_EQ(each, expected) << curve.name;
    }
}

TEST(EvaluationThreadsTest, ReadersOfEveryKindGetOnTogether)
{
    auto manager = PropertyManager::Create();
    manager->CreateSpatialProperty("odd", Point2D{}, PropertyManager::Type::Animatable, nullptr);
    KeyFrameList &list = manager->KeyFrames("odd");
    for (int i = 0; i < 60; ++i)
        list.Add(Key(i * 20, Point2D{static_cast<float>(i % 7), static_cast<float>(i % 5)}, {-9, 1}, {9, 1}));
    const PropertyManager &reader = *manager;
    for (int round = 0; round < 20; ++round) {
        // A change between the rounds leaves tables behind that no longer match.
        list.ForEach([round](KeyFrame &key) {
            key.SetValue(Point2D{static_cast<float>(key.Time() % (7 + round)), static_cast<float>(round)});
        });
        Together([&](int thread) {
            const KeyFrameList &keys = reader.KeyFrames("odd");
            for (int time = 1; time < 1180; time += 7) {
                if (thread == 0) {
                    const auto copy = PropertyManager::Copy(reader);
                    EXPECT_EQ(copy->KeyFrames("odd").Count(), 60u);
                    time += 150;
                }
                const std::string value = Exactly(reader.ValueAtTime("odd", time));
                if (thread == 1) {
                    EXPECT_EQ(value, Exactly(SlowValueAt(keys, time, true)));
                }
                const KeyFrame &nearest = keys.NearestToTime(time);
                EXPECT_EQ(&keys.GetByID(nearest.ID()), &nearest);
                EXPECT_EQ(nearest.SpatialOutgoingTangent().Z, 0);
            }
        });
    }
}

} // namespace
} // namespace marlet::test
