#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <gmock/gmock.h>

#include <map>
#include <random>

namespace marlet::test
{
namespace
{

using namespace project;
using kytl::KyID;
using testing::ElementsAre;
using testing::HasSubstr;

KeyFrameList At(std::initializer_list<int> times)
{
    KeyFrameList list;
    for (const int time : times)
        list.Add(KeyFrame(time, list.Count()));
    return list;
}

/// The values, which At makes the places in the order of adding.
std::vector<unsigned int> Order(const KeyFrameList &list)
{
    std::vector<unsigned int> order;
    list.ForEach([&order](const KeyFrame &key) { order.push_back(boost::get<unsigned int>(key.Value())); });
    return order;
}

TEST(KeyFrameListTest, KeyFramesOfOneTimeStayInTheOrderOfAdding)
{
    const KeyFrameList list = At({20, 10, 20, 30, 20, 10});
    EXPECT_THAT(Order(list), ElementsAre(1, 5, 0, 2, 4, 3));
    EXPECT_THAT(list.Locations(), ElementsAre(10, 10, 20, 20, 20, 30));
    EXPECT_EQ(list.CountAt(20), 3u);
    EXPECT_EQ(list.CountAt(15), 0u);
    EXPECT_EQ(Exactly(list.At(20).Value()), Exactly(0u));
    const std::vector<KyID> ids = list.Identifiers();
    EXPECT_THAT(list.IdentifiersAt(20), ElementsAre(ids[2], ids[3], ids[4]));
    EXPECT_TRUE(list.IdentifiersAt(21).empty());
}

TEST(KeyFrameListTest, NeighboursAreStrictlyBeforeAndAfter)
{
    struct Case {
        int time;
        int before; // places in the order of adding, -1 for none
        int after;
    };
    const KeyFrameList list = At({10, 20, 20, 30});
    for (const Case &c :
         {Case{20, 0, 3}, {15, 0, 1}, {25, 2, 3}, {10, -1, 1}, {30, 2, -1}, {0, -1, 0}, {40, 3, -1}}) {
        const KeyFrame *before = nullptr;
        const KeyFrame *after = nullptr;
        list.AdjacentKeyFrames(c.time, &before, &after);
        const auto place = [](const KeyFrame *key) {
            return key == nullptr ? -1 : static_cast<int>(boost::get<unsigned int>(key->Value()));
        };
        EXPECT_EQ(place(before), c.before) << c.time;
        EXPECT_EQ(place(after), c.after) << c.time;
    }
    const KeyFrame *before = &list.At(10);
    const KeyFrame *after = before;
    KeyFrameList().AdjacentKeyFrames(0, &before, &after);
    EXPECT_EQ(before, nullptr);
    EXPECT_EQ(after, nullptr);
}

TEST(KeyFrameListTest, TheNearestOfTwoEquallyNearIsTheEarlierOne)
{
    const KeyFrameList list = At({10, 20});
    const std::map<int, int> nearest = {{5, 10}, {10, 10}, {15, 10}, {16, 20}, {25, 20}};
    for (const auto &[time, expected] : nearest)
        EXPECT_EQ(list.NearestToTime(time).Time(), expected) << time;
    // The distances do not fit into an int.
    EXPECT_EQ(At({INT_MIN, INT_MAX}).NearestToTime(0).Time(), INT_MAX);
    EXPECT_EQ(At({INT_MIN, INT_MAX}).NearestToTime(-1).Time(), INT_MIN);
}

TEST(KeyFrameListTest, WhatIsMissingIsNamedInTheFailure)
{
    KeyFrameList list;
    const KyID id = KyID::Generate();
    const auto failure = [](const std::function<void()> &call) -> std::string {
        try {
            call();
        } catch (const std::out_of_range &error) {
            return error.what();
        }
        return "none";
    };
    for (const bool filled : {false, true}) {
        if (filled)
            list.Add(KeyFrame(5, 1));
        EXPECT_THAT(failure([&] { list.At(-40); }), HasSubstr("-40"));
        EXPECT_THAT(failure([&] { std::as_const(list).GetByID(id); }), HasSubstr(id.ToNarrowString()));
        EXPECT_THAT(failure([&] { list.Remove(id); }), HasSubstr(id.ToNarrowString()));
        EXPECT_THAT(failure([&] { list.Move(id, 4); }), HasSubstr(id.ToNarrowString()));
        EXPECT_NO_THROW(list.ChangeKeyFrameID(id, KyID::Generate()));
        EXPECT_NO_THROW(list.Remove(99));
    }
    list.Clear();
    EXPECT_NE(failure([&] { list.FirstByTime(); }), "none");
    EXPECT_NE(failure([&] { list.LastByTime(); }), "none");
    EXPECT_NE(failure([&] { list.NearestToTime(0); }), "none");
}

TEST(KeyFrameListTest, KeyFramesAreFoundByTheirIDsWhateverChanges)
{
    std::mt19937 random(3);
    KeyFrameList list;
    std::map<std::string, int> times;
    for (int step = 0; step < 2000; ++step) {
        const int time = static_cast<int>(random() % 50);
        const std::vector<KyID> ids = list.Identifiers();
        const unsigned int what = ids.empty() ? 0 : random() % 8;
        const KyID id = ids.empty() ? KyID() : ids[random() % ids.size()];
        if (what <= 2) {
            const KeyFrame key(time, step);
            list.Add(key);
            times[key.ID().ToNarrowString()] = time;
        } else if (what <= 4) {
            list.Move(id, time);
            times[id.ToNarrowString()] = time;
        } else if (what == 5) {
            list.Remove(id);
            times.erase(id.ToNarrowString());
        } else if (what == 6) {
            const KyID next = KyID::Generate();
            list.ChangeKeyFrameID(id, next);
            times.insert({next.ToNarrowString(), times.extract(id.ToNarrowString()).mapped()});
        } else if (random() % 10 == 0) {
            for (const KyID &gone : list.IdentifiersAt(time))
                times.erase(gone.ToNarrowString());
            list.Remove(time);
        }
        ASSERT_EQ(list.Count(), times.size());
        for (const auto &[text, expected] : times) {
            int found = -1;
            ASSERT_TRUE(list.Exists(KyID::FromString(text), &found));
            ASSERT_EQ(found, expected);
            ASSERT_EQ(list.GetByID(KyID::FromString(text)).Time(), expected);
        }
        ASSERT_FALSE(list.Exists(KyID::Generate(), nullptr));
    }
}

TEST(KeyFrameListTest, AKeyFrameStaysWhereItIsInMemory)
{
    KeyFrameList list = At({0, 10});
    const KyID id = list.Identifiers()[1];
    const KeyFrame *key = &list.GetByID(id);
    for (int time = 1000; time > 0; --time)
        list.Add(KeyFrame(time, 0));
    list.Remove(0);
    list.Move(id, -5);
    EXPECT_EQ(&list.GetByID(id), key);
    EXPECT_EQ(&list.FirstByTime(), key);
    EXPECT_EQ(key->Time(), -5);
}

TEST(KeyFrameListTest, SettingAValueKeepsTheKeyFrame)
{
    KeyFrameList list;
    list.Add(Key(20, 1, {1, 2}, {3, 4}, KeyFrameType::Hold));
    list.Add(KeyFrame(20, 5));
    const std::vector<KyID> ids = list.Identifiers();
    list.Set(20, 2.5f);
    EXPECT_EQ(list.Identifiers(), ids);
    EXPECT_EQ(Exactly(list.At(20).Value()), Exactly(2.5f));
    EXPECT_EQ(list.At(20).Type(), KeyFrameType::Hold);
    EXPECT_EQ(list.At(20).OutgoingPoint(), (Handle{3, 4}));
    list.Set(30, 7);
    EXPECT_THAT(list.Locations(), ElementsAre(20, 20, 30));
}

TEST(KeyFrameListTest, ACopyHasTheSameIDsAndIsItsOwn)
{
    KeyFrameList list = At({0, 10, 10});
    list.SetSpatialType(KeyFrameList::SpatialDataType::Spatial3D);
    KeyFrameList copy = list;
    EXPECT_EQ(copy.Identifiers(), list.Identifiers());
    copy.Remove(10);
    copy.Set(0, 99u);
    EXPECT_EQ(list.Count(), 3u);
    EXPECT_EQ(Exactly(list.At(0).Value()), Exactly(0u));
    list = copy;
    EXPECT_THAT(Order(list), ElementsAre(99));
    list.Clear();
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_TRUE(list.IsSpatial());
}

TEST(KeyFrameListTest, EachKeyFrameIsHandedOutOnceAndCanBeChanged)
{
    KeyFrameList list = At({10, 20, 20});
    list.ForEach([](KeyFrame &key) { key.SetValue(boost::get<unsigned int>(key.Value()) + 10); });
    EXPECT_THAT(Order(list), ElementsAre(10, 11, 12));
    std::vector<unsigned int> backwards;
    list.ForEachReverse([&](KeyFrame &key) { backwards.push_back(boost::get<unsigned int>(key.Value())); });
    std::as_const(list).ForEachReverse(
        [&](const KeyFrame &key) { backwards.push_back(boost::get<unsigned int>(key.Value())); });
    EXPECT_THAT(backwards, ElementsAre(12, 11, 10, 12, 11, 10));
    int time = 0;
    EXPECT_TRUE(list.Find(time, [](KeyFrame key) { return key.Value() == PropertyValue(11u); }));
    EXPECT_EQ(time, 20);
    EXPECT_FALSE(list.Find(time, [](KeyFrame) { return false; }));
}

TEST(KeyFrameListTest, ACallbackMayChangeTheListItIsCalledFrom)
{
    for (const bool reverse : {false, true}) {
        KeyFrameList list = At({10, 20, 30, 40, 50});
        std::vector<int> seen;
        const auto change = [&](KeyFrame &key) {
            seen.push_back(key.Time());
            if (key.Time() == 20)
                list.Add(KeyFrame(5, 9u));
            if (key.Time() == 30) {
                list.Remove(10);
                list.Remove(50);
                list.Remove(key.ID());
                key.SetValue(1u); // it is gone from the list, but not from under the callback
            }
            if (key.Time() == 40)
                list.Move(key.ID(), 45);
        };
        reverse ? list.ForEachReverse(change) : list.ForEach(change);
        EXPECT_EQ(seen, reverse ? (std::vector{50, 40, 30, 20}) : (std::vector{10, 20, 30, 40}));
        EXPECT_THAT(list.Locations(), ElementsAre(5, 20, 45));
    }
    KeyFrameList list = At({1, 2, 3});
    int calls = 0;
    std::as_const(list).ForEach([&](const KeyFrame &key) {
        list.Clear();
        calls += key.Time();
    });
    EXPECT_EQ(calls, 1);
}

/// Incoming, outgoing and spatial flag, where they are set.
std::string Flags(const KeyFrame &key)
{
    return std::string(key.IsIncomingCurveDirty() ? "i" : "") + (key.IsOutgoingCurveDirty() ? "o" : "") +
           (key.IsSpatialCurveDirty() ? "s" : "");
}

std::vector<std::string> Flags(const KeyFrameList &list)
{
    std::vector<std::string> flags;
    list.ForEach([&flags](const KeyFrame &key) { flags.push_back(Flags(key)); });
    return flags;
}

TEST(KeyFrameListTest, ChangesOfAKeyFrameMarkItsPieces)
{
    KeyFrame key(0, 1);
    EXPECT_EQ(Flags(key), "s");
    const std::pair<std::function<void(KeyFrame &)>, const char *> changes[] = {
        {[](KeyFrame &k) { k.SetValue(2.0); }, "ios"},
        {[](KeyFrame &k) { k.SetType(KeyFrameType::Hold); }, "ios"},
        {[](KeyFrame &k) {
             k.SetIncomingPoint({1, 0});
         },
         "ios"},
        {[](KeyFrame &k) {
             k.SetOutgoingPoint({1, 0});
         },
         "ios"}};
    for (const auto &[change, expected] : changes) {
        KeyFrame changed = key;
        change(changed);
        EXPECT_EQ(Flags(changed), expected);
        EXPECT_EQ(changed.ID(), key.ID());
    }
}

TEST(KeyFrameListTest, AddingMarksWhatTheNewNeighboursAskFor)
{
    const KeyFrame linear(10, Point2D{});
    const auto added = [&linear](KeyFrameType before, KeyFrameType after) {
        KeyFrameList list;
        list.Add(Key(0, Point2D{}, {}, {}, before));
        list.Add(Key(20, Point2D{}, {}, {}, after));
        list.Add(linear);
        return Flags(list.At(10));
    };
    EXPECT_EQ(added(KeyFrameType::Linear, KeyFrameType::Linear), "s");
    EXPECT_EQ(added(KeyFrameType::Bezier, KeyFrameType::Linear), "is");
    EXPECT_EQ(added(KeyFrameType::Linear, KeyFrameType::Hold), "os");

    KeyFrameList path = At({});
    path.SetSpatialType(KeyFrameList::SpatialDataType::Spatial2D);
    for (const int time : {0, 10, 20, 30})
        path.Add(KeyFrame(time, Point2D{static_cast<float>(time), 0}));
    auto manager = PropertyManager::Create();
    manager->CreateSpatialProperty("p", Point2D{}, PropertyManager::Type::Animatable, nullptr);
    KeyFrameList &list = manager->KeyFrames("p") = path;
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

TEST(KeyFrameListTest, EvaluatingClearsTheFlagsOfItsPieceAlone)
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

TEST(KeyFrameListTest, MovingMarksAllButTheKeyFrameThatMoves)
{
    KeyFrameList list = At({0, 10, 20});
    list.Move(list.At(10).ID(), 15);
    EXPECT_THAT(Flags(list), ElementsAre("ios", "s", "ios"));
}

} // namespace
} // namespace marlet::test
