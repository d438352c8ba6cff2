// What changes of a list mark, and what evaluating clears.

#include <tests/support/OddCurves.h>

#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using namespace project;
using testing::ElementsAre;

/// Incoming, outgoing and spatial flags, where they are set.
std::vector<std::string> Flags(const KeyFrameList &list)
{
    std::vector<std::string> flags;
    list.ForEach([&flags](const KeyFrame &key) {
        flags.push_back(std::string(key.IsIncomingCurveDirty() ? "i" : "") +
                        (key.IsOutgoingCurveDirty() ? "o" : "") + (key.IsSpatialCurveDirty() ? "s" : ""));
    });
    return flags;
}

TEST(KeyFrameFlags, AddingMarksWhatTheNewNeighboursAskFor)
{
    const KeyFrame linear(10, Point2D{});
    const auto added = [&linear](KeyFrameType before, KeyFrameType after) {
        KeyFrameList list;
        list.Add(Key(0, Point2D{}, {}, {}, before));
        list.Add(Key(20, Point2D{}, {}, {}, after));
        list.Add(linear);
        return Flags(list)[1];
    };
    EXPECT_EQ(added(KeyFrameType::Linear, KeyFrameType::Linear), "s");
    EXPECT_EQ(added(KeyFrameType::Bezier, KeyFrameType::Linear), "is");
    EXPECT_EQ(added(KeyFrameType::Linear, KeyFrameType::Hold), "os");

    auto manager = PropertyManager::Create();
    manager->CreateSpatialProperty("p", Point2D{}, PropertyManager::Type::Animatable, nullptr);
    KeyFrameList &list = manager->KeyFrames("p");
    for (const int time : {0, 10, 20, 30})
        list.Add(KeyFrame(time, Point2D{static_cast<float>(time), 0}));
    for (const int time : {5, 15, 25})
        manager->ValueAtTime("p", time);
    EXPECT_THAT(Flags(list), ElementsAre("", "", "", ""));
    list.Add(KeyFrame(12, Point2D{3, 4}));
    EXPECT_THAT(Flags(list), ElementsAre("", "s", "s", "s", ""));
    list.Set(0, Point2D{8, 8});
    EXPECT_THAT(Flags(list), ElementsAre("", "s", "s", "s", ""));
    list.Remove(12345);
    EXPECT_THAT(Flags(list), ElementsAre("ios", "ios", "ios", "ios", "ios"));
}

TEST(KeyFrameFlags, EvaluatingClearsTheFlagsOfItsPieceAlone)
{
    auto manager = PropertyManager::Create();
    manager->CreateProperty("p", 0.0f, PropertyManager::Type::Animatable, nullptr);
    KeyFrameList &list = manager->KeyFrames("p");
    for (const int time : {0, 10, 20})
        list.Add(Key(time, static_cast<float>(time), {-3, 0}, {3, 0}));
    manager->ValueAtTime("p", 5);
    EXPECT_THAT(Flags(list), ElementsAre("is", "os", "ios"));
    list.At(0).SetValue(7.0f);
    list.At(10).SetValue(8.0f);
    manager->ValueAtTime("p", 5);
    EXPECT_THAT(Flags(list), ElementsAre("is", "os", "ios")) << "though the timing is the same as before";
}

TEST(KeyFrameFlags, MovingMarksAllButTheKeyFrameThatMoves)
{
    KeyFrameList list;
    for (const int time : {0, 10, 20})
        list.Add(KeyFrame(time, 0u));
    list.Move(list.At(10).ID(), 15);
    EXPECT_THAT(Flags(list), ElementsAre("ios", "s", "ios"));
}

} // namespace
} // namespace marlet::test
