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
        {2589408, 29.97, "00;00;00;00"},  {-1800, 29.97, "-00;01;00;02"}, {1440, 23.976, "00;01;00;01"},
        {14386, 23.976, "00;09;59;19"},   {2160000, 25.0, "24:00:00:00"}, {-5, 0.5, "-00:00:00:00"},
        {5, NAN, "00:00:00:00"},          {1800, 29.98, "00:01:00:00"},   {INT_MIN, 1.0, "-596523:14:08:00"},
        {INT_MIN, 29.97, "-08;00;42;20"}, {INT_MAX, 1e300, "00:00:01:00"}};
    for (const Case &c : cases)
        EXPECT_EQ(TimeCode::FromFrame(c.frame, c.rate).ToString(), c.text) << c.frame << " at " << c.rate;
}

TEST(TimeCodeTest, TimeCodesAreTurnedBackIntoFrames)
{
    EXPECT_EQ(TimeCode::FromFrame(INT_MIN, 25.0).ToFrame(), INT_MIN);
    EXPECT_EQ((TimeCode{1, 2, 3, 4, 29.97, true}).ToFrame(), -111582);
    // One frame in 1440 is dropped at this rate, which makes the number of some minutes' first frame come up
    // twice.
    EXPECT_NE(TimeCode::FromFrame(15826, 23.976).ToFrame(), 15826);
    EXPECT_EQ((TimeCode{INT_MAX, 0, 0, 0, 25.0, false}).TotalSeconds(), INT_MAX);
    EXPECT_EQ((TimeCode{INT_MAX, INT_MAX, INT_MAX, INT_MAX, 59.94, true}).ToFrame(), INT_MIN);
}

TEST(TimeCodeTest, TypedTextIsReadAndOtherTextLeavesTheResultAlone)
{
    const auto read = [](const char16_t *text, double rate) {
        TimeCode code{5, 6, 7, 8, 50.0, true};
        const bool isRead = TimeCode::FromString(text, rate, code);
        return (isRead ? "" : "not: ") + code.ToString();
    };
    EXPECT_EQ(read(u"1:2:3:4", 25), "01:02:03:04");
    EXPECT_EQ(read(u"-00|00;00:01", 25), "-00:00:00:01");
    EXPECT_EQ(read(u"99;99;99;99", 29.97), "99;99;99;99");
    EXPECT_EQ(read(u"1:2:3:4", 0), "not: -05:06:07:08");
    const char16_t *others[] = {u"-",        u"1:2:3",     u"1:2:3:",      u"1:2:3:4:5", u"111:2:3:4",
                                u" 1:2:3:4", u"1:2:3:4\n", u"1::3:4",      u"--1:2:3:4", u"+1:2:3:4",
                                u"1.2.3.4",  u"1:-2:3:4",  u"\u0661:2:3:4"};
    for (const char16_t *text : others)
        EXPECT_EQ(read(text, 25), "not: -05:06:07:08") << marlet::project::ToUtf8(text);
    EXPECT_THROW(read(nullptr, 25), std::invalid_argument);
}

} // namespace
