#include <marlet/foundation/TimeCode.h>

#include <gtest/gtest.h>

#include <climits>
#include <cmath>

namespace
{

using marlet::project::TimeCode;

struct Counting {
    double rate;
    int framesPerSecond;
    int dropped;
    int framesPerDay;
};

constexpr Counting kDropFrame[] = {{29.97, 30, 2, 24 * 107892}, {59.94, 60, 4, 24 * 215784}};

/// Counts like a clock does: one number after the other, leaving out the first ones of a minute.
void Advance(TimeCode &code, const Counting &counting)
{
    if (++code.frames < counting.framesPerSecond)
        return;
    code.frames = 0;
    if (++code.seconds < 60)
        return;
    code.seconds = 0;
    ++code.minutes;
    if (code.minutes % 10 != 0)
        code.frames = counting.dropped;
    if (code.minutes == 60) {
        code.minutes = 0;
        ++code.hours;
    }
}

TEST(TimeCodeTest, DropFrameCountsLikeAClockForADay)
{
    for (const Counting &counting : kDropFrame) {
        TimeCode clock;
        clock.frameRate = counting.rate;
        for (int frame = 0; frame < counting.framesPerDay; ++frame, Advance(clock, counting)) {
            const TimeCode code = TimeCode::FromFrame(frame, counting.rate);
            ASSERT_TRUE(code.hours == clock.hours && code.minutes == clock.minutes &&
                        code.seconds == clock.seconds && code.frames == clock.frames)
                << frame << " is " << code.ToString() << ", not " << clock.ToString();
            ASSERT_EQ(code.ToFrame(), frame);
        }
    }
}

TEST(TimeCodeTest, FramesAreWrittenAsTimeCodes)
{
    struct Case {
        int frame;
        double rate;
        const char *text;
    };
    const Case cases[] = {
        {1799, 29.97, "00;00;59;29"},       {1800, 29.97, "00;01;00;02"},     {17982, 29.97, "00;10;00;00"},
        {107892, 29.97, "01;00;00;00"},     {2589408, 29.97, "00;00;00;00"},  {-1800, 29.97, "-00;01;00;02"},
        {1440, 23.976, "00;01;00;01"},      {14386, 23.976, "00;09;59;19"},   {90000, 25.0, "01:00:00:00"},
        {2160000, 25.0, "24:00:00:00"},     {-1, 25.0, "-00:00:00:01"},       {0, 0.5, "00:00:00:00"},
        {-5, 0.5, "-00:00:00:00"},          {5, NAN, "00:00:00:00"},          {1800, 29.98, "00:01:00:00"},
        {INT_MIN, 1.0, "-596523:14:08:00"}, {INT_MIN, 29.97, "-08;00;42;20"}, {INT_MAX, 1e300, "00:00:01:00"},
        {36000000, 100.0, "100:00:00:00"},
    };
    for (const Case &c : cases) {
        const TimeCode code = TimeCode::FromFrame(c.frame, c.rate);
        EXPECT_EQ(code.ToString(), c.text) << c.frame << " at " << c.rate;
        EXPECT_EQ(code.ToWideString(), marlet::project::FromUtf8(code.ToString()));
        EXPECT_EQ(code.negative, c.frame < 0);
    }
    EXPECT_EQ(TimeCode::FromFrame(0, 0.5).frameRate, 0.5);
}

TEST(TimeCodeTest, TimeCodesAreTurnedBackIntoFrames)
{
    EXPECT_EQ(TimeCode::FromFrame(-1, 25.0).ToFrame(), -1);
    EXPECT_EQ(TimeCode::FromFrame(INT_MIN, 25.0).ToFrame(), INT_MIN);
    EXPECT_EQ(TimeCode::FromFrame(INT_MAX, 25.0).ToFrame(), INT_MAX);
    EXPECT_EQ((TimeCode{1, 2, 3, 4, 25.0, false}).ToFrame(), 93079);
    EXPECT_EQ((TimeCode{1, 2, 3, 4, 29.97, true}).ToFrame(), -111582);
    // One frame in 1440 is dropped at this rate, which makes the number of some minutes' first frame come up
    // twice.
    EXPECT_NE(TimeCode::FromFrame(15826, 23.976).ToFrame(), 15826);
    EXPECT_EQ((TimeCode{INT_MAX, INT_MAX, INT_MAX, INT_MAX, 1e300, false}).ToFrame(), INT_MAX);
    EXPECT_EQ((TimeCode{INT_MAX, INT_MAX, INT_MAX, INT_MAX, 59.94, true}).ToFrame(), INT_MIN);
}

TEST(TimeCodeTest, TotalSecondsLeavesOutFramesAndSign)
{
    EXPECT_EQ((TimeCode{1, 2, 3, 4, 25.0, true}).TotalSeconds(), 3723);
    EXPECT_EQ((TimeCode{INT_MAX, 0, 0, 0, 25.0, false}).TotalSeconds(), INT_MAX);
}

TEST(TimeCodeTest, TypedTextIsRead)
{
    struct Case {
        const char16_t *text;
        const char *written;
        bool negative;
    };
    const Case cases[] = {
        {u"1:2:3:4", "01:02:03:04", false},     {u"-00|00;00:01", "-00:00:00:01", true},
        {u"99;99;99;99", "99:99:99:99", false}, {u"-0:0:0:0", "-00:00:00:00", true},
        {u"12:34|56;78", "12:34:56:78", false},
    };
    for (const Case &c : cases) {
        TimeCode code;
        code.negative = !c.negative;
        EXPECT_TRUE(TimeCode::FromString(c.text, 25.0, code));
        EXPECT_EQ(code.ToString(), c.written);
        EXPECT_EQ(code.negative, c.negative);
        EXPECT_EQ(code.frameRate, 25.0);
    }
}

TEST(TimeCodeTest, OtherTextLeavesTheResultAlone)
{
    const char16_t *texts[] = {u"",          u"-",         u"1:2:3",        u"1:2:3:",   u"1:2:3:4:5",
                               u"111:2:3:4", u"1:2:3:444", u" 1:2:3:4",     u"1:2:3:4 ", u"1:2:3:4\n",
                               u"1::3:4",    u"--1:2:3:4", u"+1:2:3:4",     u"1.2.3.4",  u"1,2:3:4",
                               u"a:2:3:4",   u"1:-2:3:4",  u"\u0661:2:3:4", u"1:2:3:4x", u"1: 2:3:4"};
    for (const char16_t *text : texts) {
        TimeCode code{5, 6, 7, 8, 50.0, true};
        EXPECT_FALSE(TimeCode::FromString(text, 25.0, code)) << marlet::project::ToUtf8(text);
        EXPECT_EQ(code.ToString(), "-05:06:07:08");
        EXPECT_EQ(code.frameRate, 50.0);
    }
    TimeCode code;
    EXPECT_FALSE(TimeCode::FromString(u"1:2:3:4", 0, code));
    EXPECT_FALSE(TimeCode::FromString(u"1:2:3:4", -25, code));
    EXPECT_EQ(code.hours, 0);
}

TEST(TimeCodeTest, ThreeRatesAreDropFrame)
{
    for (const double rate : {23.976, 29.97, 59.94, 29.97 + 1e-12})
        EXPECT_TRUE(TimeCode::IsDropTimeCode(rate)) << rate;
    for (const double rate : {24.0, 25.0, 30.0, 60.0, 29.97 + 1e-9, 30000.0 / 1001, 0.0, -29.97, double(NAN)})
        EXPECT_FALSE(TimeCode::IsDropTimeCode(rate)) << rate;
}

} // namespace
