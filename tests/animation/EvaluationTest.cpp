#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <gmock/gmock.h>

#include <random>

namespace marlet::test
{
namespace
{

using namespace project;
using testing::ThrowsMessage;

constexpr auto kAnimatable = PropertyManager::Type::Animatable;

std::shared_ptr<PropertyManager> WithKeys(std::initializer_list<KeyFrame> keys)
{
    auto manager = PropertyManager::Create();
    manager->CreateProperty("p", keys.begin()->Value(), kAnimatable, nullptr);
    for (const KeyFrame &key : keys)
        manager->KeyFrames("p").Add(key);
    return manager;
}

float FloatAt(const PropertyManager &manager, int time)
{
    return boost::get<float>(manager.ValueAtTime("p", time));
}

TEST(EvaluationTest, AnswersWhatTablesSayThatAreWorkedOutTheLongWay)
{
    for (const OddCurve &curve : OddCurves()) {
        const auto manager = curve.Manager();
        for (const int time : curve.Times())
            ASSERT_EQ(Exactly(manager->ValueAtTime("odd", time)),
                      Exactly(SlowValueAt(curve.keys, time, curve.isSpatial)))
                << curve.name << " at " << time;
    }
}

/// Changes a list in every way that there is, one after the other.
class Changes
{
public:
    explicit Changes(unsigned int seed) : random_(seed) {}

    int Roll(int sides) { return std::uniform_int_distribution(0, sides - 1)(random_); }
    int Time() { return Roll(60) * 10 - 100; }

    PropertyValue Value()
    {
        return Point2D{static_cast<float>(Roll(5) * 20), static_cast<float>(Roll(5) * 30)};
    }

    Handle AnyHandle()
    {
        return Roll(2) == 0 ? Handle{}
                            : Handle{static_cast<float>(Roll(200) - 100), static_cast<float>(Roll(50))};
    }

    void Apply(KeyFrameList &list)
    {
        if (list.IsEmpty() || Roll(3) == 0) {
            list.Add(Key(Time(), Value(), AnyHandle(), AnyHandle(), static_cast<KeyFrameType>(Roll(3))));
            return;
        }
        const std::vector<kytl::KyID> ids = list.Identifiers();
        const kytl::KyID id = ids[static_cast<std::size_t>(Roll(static_cast<int>(ids.size())))];
        KeyFrame &key = list.GetByID(id);
        const std::function<void()> changes[] = {
            [&] { list.Set(key.Time(), Value()); },
            [&] { list.Set(Time(), Value()); },
            [&] { list.Move(id, Time()); },
            [&] { list.Remove(id); },
            [&] { list.Remove(Time()); },
            [&] { key.SetValue(Value()); },
            [&] { key.SetOutgoingPoint(AnyHandle()); },
            [&] { key.SetIncomingPoint(AnyHandle()); },
            [&] { key.SetType(static_cast<KeyFrameType>(Roll(3))); },
            [&] { list.ForEach([this](KeyFrame &each) { each.SetValue(Value()); }); },
            [&] { list = KeyFrameList(list); }};
        changes[Roll(11)]();
    }

private:
    std::mt19937 random_;
};

TEST(EvaluationTest, AnswersFromTheKeyFramesAsTheyStandWhateverWasChanged)
{
    for (unsigned int seed = 0; seed < 40; ++seed) {
        const bool isSpatial = seed % 2 == 0;
        auto manager = PropertyManager::Create();
        if (isSpatial)
            manager->CreateSpatialProperty("p", Point2D{}, kAnimatable, nullptr);
        else
            manager->CreateProperty("p", Point2D{}, kAnimatable, nullptr);
        KeyFrameList &list = manager->KeyFrames("p");
        Changes changes(seed);
        for (int step = 0; step < 150; ++step) {
            changes.Apply(list);
            for (int i = 0; i < 8 && !list.IsEmpty(); ++i) {
                const int time = changes.Time() + changes.Roll(10);
                ASSERT_EQ(Exactly(manager->ValueAtTime("p", time)),
                          Exactly(SlowValueAt(list, time, isSpatial)))
                    << "seed " << seed << ", step " << step << ", at " << time;
            }
        }
    }
}

TEST(EvaluationTest, TheStaticValueCountsOnlyWithoutKeyFrames)
{
    const auto manager = WithKeys({Key(0, 1.0f)});
    manager->StaticValue("p") = 9.0f;
    EXPECT_EQ(FloatAt(*manager, 50), 1);
    manager->KeyFrames("p").Remove(0);
    EXPECT_EQ(FloatAt(*manager, 50), 9);
}

TEST(EvaluationTest, ALinearKeyFrameIsEvaluatedByItsHandlesEvenIfNothingMarkedThem)
{
    // A loaded key frame has no flag set.
    KeyFrame first = KeyFrameList::DeserializeKeyFrame(
        KeyFrameList::SerializeKeyFrame(Key(0, 0.0f, {}, {50, 0}, KeyFrameType::Linear)));
    EXPECT_FALSE(first.IsOutgoingCurveDirty());
    const auto manager = WithKeys({first, Key(100, 1.0f)});
    // X(t) = 150t - 50t^3 is 50 at t = 2cos(80 degrees), and the value is 3t^2 - 2t^3.
    const double t = 2 * std::cos(80 * std::acos(-1) / 180);
    EXPECT_NEAR(FloatAt(*manager, 50), 3 * t * t - 2 * t * t * t, 0.01);
}

TEST(EvaluationTest, TwoAlternativesInOnePieceAreRefused)
{
    const auto refusal = ThrowsMessage<std::runtime_error>("Cannot interpolate between different types");
    const auto straight = WithKeys({Key(0, 1.0f), Key(100, 1.0)});
    const auto curved = WithKeys({Key(0, 1, {}, {10, 10}), Key(100, 1u)});
    EXPECT_THAT([&] { straight->ValueAtTime("p", 50); }, refusal);
    EXPECT_THAT([&] { curved->ValueAtTime("p", 50); }, refusal);
    EXPECT_FALSE(curved->KeyFrames("p").At(0).IsOutgoingCurveDirty()) << "the table is kept";
    EXPECT_EQ(boost::get<float>(straight->ValueAtTime("p", 0)), 1.0f);
}

TEST(EvaluationTest, AnotherAlternativeOnAPathIsABadGetAndLeavesTheFlags)
{
    auto manager = PropertyManager::Create();
    manager->CreateSpatialProperty("p", Point2D{}, kAnimatable, nullptr);
    KeyFrameList &list = manager->KeyFrames("p");
    for (const int time : {0, 10, 20})
        list.Add(Key(time, Point2D{static_cast<float>(time), 1}));
    list.At(20).SetValue(3.0f);
    EXPECT_THROW(manager->ValueAtTime("p", 5), boost::bad_get) << "the path bends towards the next point";
    EXPECT_TRUE(list.At(10).IsSpatialCurveDirty());
    list.At(20).SetValue(Point2D{20, 1});
    EXPECT_EQ(Exactly(manager->ValueAtTime("p", 5)), Exactly(SlowValueAt(list, 5, true)));
}

TEST(EvaluationTest, APathIsTakenByTheTypeOfTheListEvenIfThePropertyIsNone)
{
    const auto manager = WithKeys({Key(0, Point2D{0, 0}), Key(10, Point2D{9, 0}), Key(20, Point2D{9, 9})});
    manager->KeyFrames("p").SetSpatialType(KeyFrameList::SpatialDataType::Spatial2D);
    EXPECT_EQ(Exactly(manager->ValueAtTime("p", 5)), Exactly(SlowValueAt(manager->KeyFrames("p"), 5, true)));
    manager->KeyFrames("p").SetSpatialType(KeyFrameList::SpatialDataType::NotSpatial);
    EXPECT_EQ(Exactly(manager->ValueAtTime("p", 5)), Exactly(Point2D{4.5f, 0}));
}

TEST(EvaluationTest, PointsThatAreNoNumbersComeThrough)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    auto manager = PropertyManager::Create();
    manager->CreateSpatialProperty("p", Point3D{}, kAnimatable, nullptr);
    KeyFrameList &list = manager->KeyFrames("p");
    int time = 0;
    for (const float x : {0.0f, nan, 1e38f, -3e38f, infinity, -infinity, 1.0f, nan, 2.0f, 0.0f})
        for (const Handle &handle : {Handle{}, Handle{30, 1e30f}, Handle{nan, infinity}})
            list.Add(Key(time += 100, Point3D{x, 1, x}, handle, handle));
    for (int t = 0; t < time; t += 7)
        EXPECT_NO_THROW(manager->ValueAtTime("p", t));
}

} // namespace
} // namespace marlet::test
