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
        // Whoever asks first puts what was added late in its place.
        list.Add(Key(round * 20 + 10, Point2D{3, 4}, {-9, 1}, {9, 1}));
        Together([&](int thread) {
            const KeyFrameList &keys = reader.KeyFrames("odd");
            EXPECT_EQ(keys.Count(), 61u);
            EXPECT_TRUE(keys.Exists(round * 20 + 10));
            for (int time = 1; time < 1180; time += 7) {
                if (thread == 0) {
                    const auto copy = PropertyManager::Copy(reader);
                    EXPECT_EQ(copy->KeyFrames("odd").Count(), 61u);
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
        list.Remove(round * 20 + 10);
    }
}

} // namespace
} // namespace marlet::test
