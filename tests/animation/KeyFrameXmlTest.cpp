#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <marlet/foundation/Exceptions.h>

#include <gmock/gmock.h>

namespace marlet::test
{
namespace
{

using namespace project;

TEST(KeyFrameXmlTest, AKeyFrameComesBackWithAnotherIDAndAllItsPiecesMarked)
{
    const KeyFrame key = Key(-40, 2.5f, {-10, 0.25f}, {1e30f, 0}, KeyFrameType::Hold);
    const WideString text = KeyFrameList::SerializeKeyFrame(key);
    const KeyFrame read = KeyFrameList::DeserializeKeyFrame(text);
    EXPECT_EQ(KeyFrameList::SerializeKeyFrame(read), text);
    EXPECT_NE(read.ID(), key.ID());
    EXPECT_TRUE(read.IsIncomingCurveDirty() && read.IsOutgoingCurveDirty() && read.IsSpatialCurveDirty());
}

TEST(KeyFrameXmlTest, WhatIsMissingFailsInTheOrderOfReading)
{
    const std::string in = "<IncomingPt X='0' Y='0'/>";
    const std::string out = "<OutgoingPt X='0' Y='0'/>";
    const std::string start = "<Key Time='0' Type='1'>";
    const std::pair<std::string, const char *> cases[] = {
        {"", "Wrong tag name\nKey"},
        {start + in + out + "<Value/>", "Wrong tag name\nKey"}, // not whole
        {"<Key Time='0'/>", "Key is missing attribute Type\n"},
        {start + out + "<Value/></Key>", "Missing element\nIncomingPt"},
        {start + "<IncomingPt Y='0'/>" + out + "</Key>", "IncomingPt is missing attribute X\n"},
        {start + in + "</Key>", "Missing element\nOutgoingPt"},
        {start + in + out + "</Key>", "Missing element\nValue"}};
    for (const auto &refused : cases)
        EXPECT_THAT([&] { KeyFrameList::DeserializeKeyFrame(FromUtf8(refused.first)); },
                    testing::ThrowsMessage<XmlParseException>(refused.second));
    EXPECT_NO_THROW(
        KeyFrameList::DeserializeKeyFrame(FromUtf8("<KEY Time='0' Type='1'><Value/>" + out + in + "</KEY>")));
}

TEST(KeyFrameXmlTest, MalformedNumbersAreNoughtAndAMissingValueIsAnInt)
{
    const KeyFrame key =
        KeyFrameList::DeserializeKeyFrame(u"<Key Time='x' Type='y'><IncomingPt X='' Y='0x1'/><OutgoingPt "
                                          u"X='+2' Y=' 3 '/><Value>5</Value></Key>");
    EXPECT_EQ(key.Time(), 0);
    EXPECT_EQ(key.Type(), KeyFrameType::Bezier);
    EXPECT_EQ(key.IncomingPoint(), (Handle{0, 0}));
    EXPECT_EQ(key.OutgoingPoint(), (Handle{2, 3}));
    EXPECT_EQ(Exactly(key.Value()), Exactly(0));
}

} // namespace
} // namespace marlet::test
