#include <tests/operations/TrackDrawing.h>

#include <tests/support/PropertyValuePrinter.h>
#include <tests/support/TestPlugins.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/Transition.h>
#include <marlet/history/EditHistory.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/sequence/SequenceClipboard.h>
#include <marlet/operations/sequence/SequenceObjects.h>
#include <marlet/operations/sequence/SequenceTrimming.h>

#include <gmock/gmock.h>

namespace marlet::test
{

namespace
{

constexpr auto kBoth = Partner::GoesAlong;

/// In frames of the sequence.
std::vector<int> KeyFramesOf(const AbstractSequenceObject &object, const char *property)
{
    std::vector<int> frames;
    for (const int time : object.Properties().KeyFrames(property).Locations())
        frames.push_back(object.StartFrame() + time / 40);
    return frames;
}

} // namespace

TEST(SequenceClipboardTest, SharesNothingWithItsSource)
{
    DrawnProject drawn("V1 |a123b456............| x4:2");
    const auto source = drawn.At("V1", 0)->OutgoingTransition();
    source->Properties().StaticValue("amount") = 30.f;
    TestPlugin::Text(*source) = "mine";
    const CopiedObjects copied(drawn.Document(), {drawn.At("V1", 0), drawn.At("V1", 4)}, kBoth);
    source->Properties().StaticValue("amount") = 40.f;
    TestPlugin::Text(*source) = "changed";
    drawn.At("V1", 0)->SetAssetInstanceStart(5);

    const auto pasted = copied.Paste(drawn.Document(), 10)[0]->OutgoingTransition();
    pasted->Properties().StaticValue("amount") = 50.f;
    TestPlugin::Text(*pasted) = "other";
    const auto again =
        copied.Paste(drawn.Document(), 10, {}, {}, PlaceMode::Overwrite)[0]->OutgoingTransition();
    EXPECT_EQ(drawn.Drawing(), "V1 |a678b456..a123b456..| x4:2 x14:2");
    EXPECT_EQ(again->Properties().StaticValue("amount"), PropertyValue(30.f));
    EXPECT_EQ(TestPlugin::Text(*again), "mine");
    EXPECT_EQ(source->Properties().StaticValue("amount"), PropertyValue(40.f));
}

TEST(SequenceClipboardTest, PastesIntoItsSequenceAlone)
{
    DrawnProject drawn("V1 |a123................|");
    DrawnProject other("V1 |a123................|");
    const CopiedObjects copied(drawn.Document(), {drawn.At("V1", 0)}, kBoth);
    EXPECT_EQ(copied.Count(), 1U);
    EXPECT_EQ(copied.Length(), 4);
    EXPECT_THROW(copied.Paste(other.Document(), 8), OperationException);
    EXPECT_THROW(CopiedObjects(drawn.Document(), {}, kBoth), OperationException);
}

TEST(SequenceKeyFramesTest, StayWithThePictureWhereTheStartOfItsObjectMoves)
{
    DrawnProject drawn("V1 |....a123456789......|");
    const Object object = drawn.At("V1", 4);
    object->Properties().KeyFrames("opacity").Set(80, 10.f);
    object->Properties().KeyFrames("opacity").Set(200, 90.f);
    ASSERT_THAT(KeyFramesOf(*object, "opacity"), testing::ElementsAre(6, 9));
    EditHistory history(drawn.Document());
    history.SetChecksAnnouncements(true);
    const std::string before = drawn.Text();

    const Object tail = SplitObject(drawn.Document(), object, 8, kBoth)[0];
    EXPECT_THAT(KeyFramesOf(*object, "opacity"), testing::ElementsAre(6, 9));
    EXPECT_THAT(KeyFramesOf(*tail, "opacity"), testing::ElementsAre(6, 9));
    TrimObject(drawn.Document(), tail, 10, 14, kBoth);
    EXPECT_THAT(KeyFramesOf(*tail, "opacity"), testing::ElementsAre(6, 9));
    MoveObject(drawn.Document(), tail, 12, {}, kBoth);
    EXPECT_THAT(KeyFramesOf(*tail, "opacity"), testing::ElementsAre(8, 11));
    while (history.Undo())
        continue;
    EXPECT_EQ(drawn.Text(), before);
}

} // namespace marlet::test
