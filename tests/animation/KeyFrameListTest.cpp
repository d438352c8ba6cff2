#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <gmock/gmock.h>

#include <algorithm>
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
    EXPECT_EQ(list.CountAt(20), 3u);
    EXPECT_EQ(Exactly(list.At(20).Value()), Exactly(0u));
    const std::vector<KyID> ids = list.Identifiers();
    EXPECT_THAT(list.IdentifiersAt(20), ElementsAre(ids[2], ids[3], ids[4]));
    EXPECT_THAT(list.Locations(), ElementsAre(10, 10, 20, 20, 20, 30));
}

/// Each time searched for from the beginning.
TEST(KeyFrameListTest, KeyFramesAddedInAnyOrderFindTheirPlacesAndNeighbours)
{
    struct Place {
        int time;
        unsigned int number;
        KeyFrameType type;
        bool isIncomingDirty;
        bool isOutgoingDirty;
    };
    std::mt19937 random(5);
    for (int round = 0; round < 40; ++round) {
        std::vector<Place> places;
        KeyFrameList list;
        const unsigned int count = round % 10 == 0 ? 1500 : 60;
        for (unsigned int number = 0; number < count; ++number) {
            const int time = static_cast<int>(random() % (count * 2 / 3));
            const auto type = static_cast<KeyFrameType>(random() % 3);
            bool before = false;
            bool after = false;
            for (const Place &place : places)
                if (place.time < time)
                    before = place.type != KeyFrameType::Linear;
            for (auto place = places.rbegin(); place != places.rend(); ++place)
                if (place->time > time)
                    after = place->type != KeyFrameType::Linear;
            const bool isCurved = type != KeyFrameType::Linear;
            auto to = places.begin();
            while (to != places.end() && to->time <= time)
                ++to;
            places.insert(to, {time, number, type, isCurved || before, isCurved || after});
            KeyFrame key(time, number);
            if (isCurved)
                key.SetType(type);
            list.Add(key);
            // In some rounds nobody asks in between.
            if (random() % 20 < static_cast<unsigned int>(round)) {
                ASSERT_EQ(list.CountAt(time), std::ranges::count(places, time, &Place::time));
                list.Set(time, list.At(time).Value());
            }
            ASSERT_EQ(list.Count(), number + 1);
            ASSERT_FALSE(list.Exists(static_cast<int>(count)));
        }
        std::string expected;
        for (const Place &place : places)
            expected += std::to_string(place.time) + " " + std::to_string(place.number) +
                        (place.isIncomingDirty ? " i" : "") + (place.isOutgoingDirty ? " o" : "") + "\n";
        std::string actual;
        list.ForEach([&actual](const KeyFrame &key) {
            actual +=
                std::to_string(key.Time()) + " " + std::to_string(boost::get<unsigned int>(key.Value())) +
                (key.IsIncomingCurveDirty() ? " i" : "") + (key.IsOutgoingCurveDirty() ? " o" : "") + "\n";
        });
        ASSERT_EQ(actual, expected) << round;
    }
}

TEST(KeyFrameListTest, ChangesTakeTheirNumberAndNotThatOfTheKeyFrames)
{
    // With all that is there shifted or marked at each of them, this would take minutes.
    constexpr int kCount = 600000;
    KeyFrameList list;
    for (int time = kCount; time > 0; --time)
        list.Set(time * 10, 1);
    EXPECT_EQ(list.FirstByTime().Time(), 10);
    const KyID id = list.At(kCount * 5).ID();
    for (int step = 0; step < kCount; ++step)
        list.Move(id, kCount * 5 + step % 100);
    EXPECT_EQ(list.GetByID(id).Time(), kCount * 5 + (kCount - 1) % 100);
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
    const KeyFrame *key = nullptr;
    EXPECT_THAT([&] { list.AdjacentKeyFrames(20, nullptr, &key); },
                testing::ThrowsMessage<std::invalid_argument>(HasSubstr("before")));
    EXPECT_THAT([&] { list.AdjacentKeyFrames(20, &key, nullptr); },
                testing::ThrowsMessage<std::invalid_argument>(HasSubstr("after")));
}

TEST(KeyFrameListTest, FindStopsAtTheFirstThatIsAccepted)
{
    const KeyFrameList list = At({20, 10, 30, 20});
    int time = -1;
    std::vector<int> asked;
    const auto isLate = [&asked](const KeyFrame &key) {
        asked.push_back(key.Time());
        return key.Time() >= 20;
    };
    EXPECT_TRUE(list.Find(time, isLate));
    EXPECT_EQ(time, 20);
    EXPECT_THAT(asked, ElementsAre(10, 20));
    EXPECT_FALSE(list.Find(time, [](const KeyFrame &key) { return key.Time() > 30; }));
    EXPECT_EQ(time, 20);
}

TEST(KeyFrameListTest, ClearingKeepsTheSpatialType)
{
    KeyFrameList list = At({10, 5});
    list.SetSpatialType(KeyFrameList::SpatialDataType::Spatial3D);
    list.Clear();
    EXPECT_TRUE(list.IsEmpty());
    EXPECT_EQ(list.SpatialType(), KeyFrameList::SpatialDataType::Spatial3D);
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
    const std::pair<std::function<void()>, std::string> calls[] = {
        {[&] { list.At(-40); }, "-40"},
        {[&] { std::as_const(list).GetByID(id); }, id.ToNarrowString()},
        {[&] { list.Remove(id); }, id.ToNarrowString()},
        {[&] { list.Move(id, 4); }, id.ToNarrowString()}};
    for (const bool filled : {false, true}) {
        if (filled)
            list.Add(KeyFrame(5, 1));
        for (const auto &[call, name] : calls)
            EXPECT_THAT(call, testing::ThrowsMessage<std::out_of_range>(HasSubstr(name)));
        EXPECT_NO_THROW(list.ChangeKeyFrameID(id, KyID::Generate()));
        EXPECT_NO_THROW(list.Remove(99));
    }
    list.Clear();
    EXPECT_THROW(list.FirstByTime(), std::out_of_range);
    EXPECT_THROW(list.LastByTime(), std::out_of_range);
    EXPECT_THROW(list.NearestToTime(0), std::out_of_range);
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
            const KyID next = KyID::Generate();
            list.ChangeKeyFrameID(id, next);
            times.insert({next.ToNarrowString(), times.extract(id.ToNarrowString()).mapped()});
        } else {
            list.Remove(id);
            times.erase(id.ToNarrowString());
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
    EXPECT_EQ(list.At(20).OutgoingPoint(), (Handle{3, 4}));
}

TEST(KeyFrameListTest, AssigningAKeyFrameKeepsItsPlace)
{
    KeyFrameList list = At({100, 200, 300});
    const std::vector<KyID> ids = list.Identifiers();
    const KeyFrame removed = [&] {
        KeyFrameList other = list;
        return other.At(300);
    }();
    list.At(100) = Key(300, 7.5f, {1, 2}, {3, 4}, KeyFrameType::Hold);
    std::swap(list.At(200), list.At(300));
    list.ForEach([&](KeyFrame &key) {
        const KeyFrame &same = key;
        if (key.Time() == 200)
            key = same;
    });
    EXPECT_THAT(list.Locations(), ElementsAre(100, 200, 300));
    EXPECT_EQ(list.Identifiers(), ids);
    for (const int time : {100, 200, 300}) {
        EXPECT_EQ(list.At(time).Time(), time);
        EXPECT_TRUE(list.At(time).IsIncomingCurveDirty() && list.At(time).IsOutgoingCurveDirty()) << time;
    }
    EXPECT_EQ(Exactly(list.At(100).Value()), Exactly(7.5f));
    EXPECT_EQ(list.At(100).Type(), KeyFrameType::Hold);
    EXPECT_EQ(list.At(100).IncomingPoint(), (Handle{1, 2}));
    EXPECT_EQ(list.At(100).OutgoingPoint(), (Handle{3, 4}));
    EXPECT_EQ(Exactly(list.At(200).Value()), Exactly(2u));

    KeyFrame free(1, 1);
    free = list.At(300);
    EXPECT_EQ(free.Time(), 300);
    EXPECT_EQ(free.ID(), ids[2]);
    free = removed;
    EXPECT_EQ(free.IsSpatialCurveDirty(), removed.IsSpatialCurveDirty());
    EXPECT_FALSE(free.IsIncomingCurveDirty());
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
}

TEST(KeyFrameListTest, ACallbackMayEndTheListItIsCalledFrom)
{
    const auto make = [] {
        auto manager = PropertyManager::Create();
        manager->CreateProperty("p", 0u, PropertyManager::Type::Animatable, nullptr);
        manager->KeyFrames("p") = At({10, 20, 30});
        return manager;
    };
    const WideString text = make()->Serialize();
    using Manager = std::shared_ptr<PropertyManager>;
    const std::pair<const char *, std::function<void(Manager &)>> ends[] = {
        {"assigns",
         [](Manager &m) {
             m->KeyFrames("p") = At({1, 2});
         }},
        {"clears the list", [](Manager &m) { m->KeyFrames("p").Clear(); }},
        {"walks, then clears",
         [](Manager &m) {
             m->KeyFrames("p").ForEach([](KeyFrame &key) { key.SetValue(5u); });
             m->Clear();
         }},
        {"takes a copy", [&](Manager &m) { m->TakeCopyOf(*make()); }},
        {"reads", [&](Manager &m) { m->Deserialize(text); }},
        {"drops the manager", [](Manager &m) { m.reset(); }}};
    using Walk = std::function<void(KeyFrameList &, const std::function<void(const KeyFrame &)> &)>;
    const std::pair<const char *, Walk> walks[] = {
        {"in place", [](auto &list, auto &call) { list.ForEach([&](KeyFrame &key) { call(key); }); }},
        {"in place, back",
         [](auto &list, auto &call) { list.ForEachReverse([&](KeyFrame &key) { call(key); }); }},
        {"of copies", [](auto &list, auto &call) { std::as_const(list).ForEach(call); }},
        {"of copies, back", [](auto &list, auto &call) { std::as_const(list).ForEachReverse(call); }},
        {"search", [](auto &list, auto &call) {
             int time = 0;
             list.Find(time, [&](const KeyFrame &key) {
                 call(key);
                 return false;
             });
         }}};
    for (const auto &[end, change] : ends) {
        for (const auto &[name, walk] : walks) {
            SCOPED_TRACE(std::string(end) + " in a walk " + name);
            Manager manager = make();
            std::vector<int> seen;
            walk(manager->KeyFrames("p"), [&, &apply = change](const KeyFrame &key) {
                seen.push_back(key.Time());
                if (seen.size() == 2)
                    apply(manager);
                EXPECT_EQ(key.Time(), seen.back());
            });
            EXPECT_EQ(seen.size(), 2u);
        }
    }
}

} // namespace
} // namespace marlet::test
