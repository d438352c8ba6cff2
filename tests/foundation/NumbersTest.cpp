#include <marlet/foundation/Numbers.h>
#include <marlet/foundation/Tolerance.h>

#include <gtest/gtest.h>

#include <climits>

namespace
{

using namespace marlet::project;

TEST(NumbersTest, TruncationGoesTowardsZeroAndStopsAtTheLimits)
{
    const std::pair<double, int> cases[] = {{1.9, 1},
                                            {-1.9, -1},
                                            {2147483647.5, INT_MAX},
                                            {2147483646.9, INT_MAX - 1},
                                            {-2147483648.5, INT_MIN},
                                            {-INFINITY, INT_MIN},
                                            {NAN, 0}};
    for (const auto &[value, expected] : cases)
        EXPECT_EQ(Truncate<int>(value), expected) << value;
    EXPECT_EQ(Truncate<int>(2147483648.0f), INT_MAX);
    EXPECT_EQ(Truncate<std::int64_t>(9223372036854775807.0), LLONG_MAX);
    EXPECT_EQ(Truncate<unsigned int>(-0.5), 0u);
    EXPECT_EQ(Truncate<unsigned int>(4294967295.5), UINT_MAX);
    // And wraps where that is asked for.
    EXPECT_EQ(TruncateWrapping<unsigned char>(257.9), 1);
    EXPECT_EQ(TruncateWrapping<unsigned char>(-1.9), 255);
    EXPECT_EQ(TruncateWrapping<unsigned int>(-2.0), UINT_MAX - 1);
    EXPECT_EQ(TruncateWrapping<unsigned int>(NAN), 0u);
}

TEST(NumbersTest, HalvesRoundAwayFromZero)
{
    for (const auto &[value, expected] :
         {std::pair(0.5, 1.0), {1.4, 1.0}, {-0.5, -1.0}, {-1.4, -1.0}, {0.0, 0.0}})
        EXPECT_EQ(RoundHalfAway(value), expected) << value;
}

TEST(NumbersTest, ToleranceGrowsWithTheSmallerMagnitude)
{
    using kytl::NearlyEqual;
    EXPECT_TRUE(NearlyEqual(0.0, 0.125, 0.125));
    EXPECT_FALSE(NearlyEqual(0.0, 0.1875, 0.125));
    EXPECT_TRUE(NearlyEqual(7.0, 8.0, 0.125));
    EXPECT_FALSE(NearlyEqual(6.0, 7.0, 0.125));
    EXPECT_FALSE(NearlyEqual(double(NAN), double(NAN), 0.125));
}

} // namespace
