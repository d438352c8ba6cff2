#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <gmock/gmock.h>

#include <cmath>

namespace marlet::test
{
namespace
{

using namespace project;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::ThrowsMessage;

constexpr auto kAnimatable = PropertyManager::Type::Animatable;
constexpr auto kNotAnimatable = PropertyManager::Type::NotAnimatable;

/// "a" has key frames, "b" may not have any but has, "c" is a path, "d" is what it was created as.
std::shared_ptr<PropertyManager> Filled()
{
    auto manager = PropertyManager::Create();
    manager->CreateProperty("a", 1.0f, kAnimatable, nullptr);
    manager->CreateProperty("b", 2, kNotAnimatable, nullptr);
    manager->CreateSpatialProperty("c", Point2D{3, 4}, kAnimatable, nullptr);
    manager->CreateProperty("d", true, kAnimatable, nullptr);
    for (const int time : {0, 10, 10})
        manager->KeyFrames("a").Add(KeyFrame(time, 1.0f));
    manager->KeyFrames("b").Add(KeyFrame(5, 7));
    manager->StaticValue("c") = Point2D{5, 6};
    manager->Expression("d") = "time * 2";
    return manager;
}

TEST(PropertyManagerTest, ANameIsTakenOnceAndMustBeOneOfXml)
{
    PropertyManager manager;
    PropertyManager::PropertyID id{77};
    EXPECT_EQ(manager.CreateProperty("first", 1, kAnimatable, nullptr), 0);
    EXPECT_EQ(manager.CreateSpatialProperty("second", 1, kAnimatable, &id), 0);
    EXPECT_EQ(id.index, 1u);
    EXPECT_EQ(manager.CreateProperty("first", 2.0f, kNotAnimatable, &id), 1000);
    for (const char *name : {"", "a b", "\xFF"})
        EXPECT_EQ(manager.CreateProperty(name, 1, kAnimatable, &id), 1001) << name;
    EXPECT_EQ(manager.CreateProperty(nullptr, 1, kAnimatable, &id), 1001);
    EXPECT_EQ(id.index, 1u);
    EXPECT_EQ(manager.CreateProperty("Größe-1", 1, kAnimatable, &id), 0);
    EXPECT_EQ(id.index, 2u);
    EXPECT_THAT(manager.PropertyNames(), ElementsAre("first", "second", "Größe-1"));
}

TEST(PropertyManagerTest, WhatIsNotThereIsNamedInTheFailure)
{
    const auto manager = Filled();
    const PropertyManager &reader = *manager;
    const std::function<void(const char *)> calls[] = {
        [&](const char *name) { manager->StaticValue(name); },
        [&](const char *name) { manager->KeyFrames(name); },
        [&](const char *name) { reader.ValueAtTime(name, 0); },
        [&](const char *name) { reader.GetPropertyID(name); },
        [&](const char *name) { manager->Expression(name); },
        [&](const char *name) { manager->RemoveExpression(name); }};
    for (const auto &call : calls) {
        EXPECT_THAT([&] { call("shadow"); }, ThrowsMessage<std::out_of_range>(HasSubstr("shadow")));
        EXPECT_THROW(call(nullptr), std::out_of_range);
    }
    EXPECT_THROW(reader.ValueAtTime(PropertyManager::PropertyID{4}, 0), std::out_of_range);
    EXPECT_EQ(reader.PropertyCount(), 4u) << "asking creates nothing";
}

TEST(PropertyManagerTest, StaticAndDefaultAreAboutKeyFramesAndValues)
{
    const auto manager = Filled();
    EXPECT_FALSE(manager->IsStatic("a"));
    EXPECT_FALSE(manager->IsDefault("a")) << "though every key frame holds the default";
    EXPECT_TRUE(manager->IsStatic("b")) << "its key frames are hidden";
    EXPECT_TRUE(manager->IsDefault("b"));
    EXPECT_EQ(Exactly(manager->ValueAtTime("b", 0)), Exactly(7)) << "but evaluated";
    EXPECT_FALSE(manager->IsDefault("c"));
    EXPECT_TRUE(manager->IsDefault("d"));
    manager->StaticValue("c") = Point2D{3, 4.00001f};
    EXPECT_TRUE(manager->IsDefault("c")) << "points are equal within a tolerance";
    EXPECT_TRUE(manager->IsDirty());
    manager->KeyFrames("a").Clear();
    EXPECT_FALSE(manager->IsDirty());
    manager->StaticValue("a") = std::nextafter(1.0f, 2.0f);
    EXPECT_TRUE(manager->IsDirty());
}

TEST(PropertyManagerTest, ResetLeavesExpressionsAndHiddenKeyFrames)
{
    const auto manager = Filled();
    manager->StaticValue("a") = 100.0f;
    manager->StaticValue("b") = 100;
    manager->Reset();
    EXPECT_FALSE(manager->IsDirty());
    EXPECT_EQ(Exactly(manager->StaticValue("b")), Exactly(2));
    EXPECT_EQ(manager->KeyFrames("b").Count(), 1u);
    EXPECT_EQ(manager->Expression("d"), "time * 2");
}

TEST(PropertyManagerTest, ACopyHasEverythingButTheIDs)
{
    const auto manager = Filled();
    const auto copy = PropertyManager::Copy(manager);
    EXPECT_EQ(copy->Serialize(), manager->Serialize());
    std::vector<kytl::KyID> ids = copy->KeyFrames("a").Identifiers();
    const std::vector<kytl::KyID> originals = manager->KeyFrames("a").Identifiers();
    ids.insert(ids.end(), originals.begin(), originals.end());
    for (std::size_t i = 0; i < ids.size(); ++i)
        EXPECT_EQ(std::count(ids.begin(), ids.end(), ids[i]), 1) << "those of one time too: " << i;
    copy->Expression("a") = "x";
    copy->StaticValue("a") = 8.0f;
    copy->KeyFrames("a").Clear();
    EXPECT_FALSE(manager->HasExpression("a"));
    EXPECT_EQ(manager->KeyFrames("a").Count(), 3u);
    EXPECT_EQ(copy->CreateProperty("a", 1, kAnimatable, nullptr), 1000) << "names are found in the copy";

    PropertyManager taker;
    taker.CreateProperty("gone", 1, kAnimatable, nullptr);
    taker.TakeCopyOf(*manager);
    EXPECT_EQ(taker.Serialize(), manager->Serialize());
    EXPECT_NE(taker.KeyFrames("a").Identifiers(), originals);
    taker.TakeCopyOf(taker);
    EXPECT_EQ(taker.Serialize(), manager->Serialize());
    EXPECT_THROW(PropertyManager::Copy(std::shared_ptr<PropertyManager>()), std::invalid_argument);
}

TEST(PropertyManagerTest, AStaticValueStaysWhereItIsInMemory)
{
    PropertyManager manager;
    manager.CreateProperty("first", 1, kAnimatable, nullptr);
    const PropertyValue *value = &manager.StaticValue("first");
    const KeyFrameList *keys = &manager.KeyFrames("first");
    for (int i = 0; i < 1000; ++i)
        manager.CreateProperty(("p" + std::to_string(i)).c_str(), i, kAnimatable, nullptr);
    EXPECT_EQ(&manager.StaticValue("first"), value);
    EXPECT_EQ(&manager.KeyFrames("first"), keys);
}

} // namespace
} // namespace marlet::test
