#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <marlet/foundation/Exceptions.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

using namespace project;

TEST(KeyFrameXmlTest, AKeyFrameIsOneElement)
{
    const KeyFrame key = Key(-40, 2.5f, {-10, 0.25f}, {1e30f, 0}, KeyFrameType::Hold);
    const WideString text = KeyFrameList::SerializeKeyFrame(key);
    EXPECT_EQ(ToUtf8(text), "<Key Time=\"-40\" Type=\"2\">\n"
                            " <IncomingPt X=\"-10\" Y=\"0.25\"/>\n"
                            " <OutgoingPt X=\"1e+30\" Y=\"0\"/>\n"
                            " <Value>\n"
                            "  <float>2.5</float>\n"
                            " </Value>\n"
                            "</Key>\n");
    const KeyFrame read = KeyFrameList::DeserializeKeyFrame(text);
    EXPECT_EQ(KeyFrameList::SerializeKeyFrame(read), text);
    EXPECT_NE(read.ID(), key.ID());
    EXPECT_EQ(read.Type(), KeyFrameType::Hold);
    EXPECT_TRUE(read.IsIncomingCurveDirty() && read.IsOutgoingCurveDirty() && read.IsSpatialCurveDirty());
}

std::string Failure(const std::string &text)
{
    try {
        KeyFrameList::DeserializeKeyFrame(FromUtf8(text));
    } catch (const XmlParseException &error) {
        return error.what();
    }
    return "nothing";
}

TEST(KeyFrameXmlTest, WhatIsMissingFailsInTheOrderOfReading)
{
    const std::string in = "<IncomingPt X='0' Y='0'/>";
    const std::string out = "<OutgoingPt X='0' Y='0'/>";
    const std::string value = "<Value/>";
    const std::pair<std::string, const char *> cases[] = {
        {"", "Wrong tag name\nKey"},
        {"<Animation/>", "Wrong tag name\nKey"},
        {"<Key Type='1' Time='0'>" + in + out + value, "Wrong tag name\nKey"}, // not whole
        {"<Key/>", "Key is missing attribute Time\n"},
        {"<Key Time='0'/>", "Key is missing attribute Type\n"},
        {"<Key Time='0' Type='1'>" + out + value + "</Key>", "Missing element\nIncomingPt"},
        {"<Key Time='0' Type='1'>" + in + "</Key>", "Missing element\nOutgoingPt"},
        {"<Key Time='0' Type='1'><IncomingPt Y='0'/>" + out + "</Key>",
         "IncomingPt is missing attribute X\n"},
        {"<Key Time='0' Type='1'>" + in + "<OutgoingPt X='0'/></Key>", "OutgoingPt is missing attribute Y\n"},
        {"<Key Time='0' Type='1'>" + in + out + "</Key>", "Missing element\nValue"},
        {"<KEY Time='0' Type='1'>" + value + out + in + "</KEY>", "nothing"},
    };
    for (const auto &[text, failure] : cases)
        EXPECT_EQ(Failure(text), failure) << text;
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
