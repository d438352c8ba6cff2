#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <marlet/animation/TemporalCurve.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace marlet::test
{
namespace
{

using namespace project;

TEST(TemporalCurveTest, LeavesOutNothingThatALookupMeets)
{
    std::mt19937 random(7);
    int beyond = 0;
    for (const int span : {7, 99, 100, 331, 5000, 70000}) {
        for (int round = 0; round < 60; ++round) {
            const float reach = static_cast<float>(span) * (round % 3 == 0 ? 1.0f : 25.0f);
            std::uniform_real_distribution<float> handle(-reach, reach);
            const int first = std::uniform_int_distribution(-2 * span, span)(random);
            const TemporalInputs inputs{first, first + span, handle(random), handle(random)};
            const auto whole = SlowTemporalTable(Key(first, 0, {}, {inputs.outgoing, 0}),
                                                 Key(first + span, 1, {inputs.incoming, 0}), Stretches::All);
            beyond += whole.begin()->first < first || whole.rbegin()->first > first + span;
            const auto table = TemporalTable::Build(inputs);
            for (int time = first + 1; time < first + span; time += 1 + span / 400)
                ASSERT_EQ(table->Parameter(time), SlowParameter(whole, time))
                    << span << " from " << first << ", handles " << inputs.outgoing << ", " << inputs.incoming
                    << ", at " << time;
        }
    }
    EXPECT_GT(beyond, 200) << "the curves should leave their pieces";
}

TEST(TemporalCurveTest, TheCurveIsMetToAHundredthOfThePieceOrATimeUnit)
{
    for (const int span : {10, 99, 100, 199, 200, 3000, 1000000}) {
        const float outgoing = 0.4f * static_cast<float>(span);
        const float incoming = -0.7f * static_cast<float>(span);
        const auto table = TemporalTable::Build({0, span, outgoing, incoming});
        for (int time = 1; time < span; time += 1 + span / 500) {
            const double t = table->Parameter(time);
            const double u = 1 - t;
            const double x =
                3.0 * outgoing * t * u * u + 3 * (double(span) + incoming) * t * t * u + span * t * t * t;
            EXPECT_NEAR(x, time, std::max(1, span / 100)) << span;
        }
    }
}

TEST(TemporalCurveTest, ParametersLieBetweenTheEndsWhateverTheHandles)
{
    const float infinity = std::numeric_limits<float>::infinity();
    const float odd[] = {0, -0.0f, 1e-45f, 40, -900, 1e9f, -1e30f, 3.4e38f, infinity, -infinity, NAN};
    const int places[][2] = {{-50, 50}, {0, 1000}, {-90000, -1}, {INT_MIN, INT_MAX}, {INT_MAX - 2, INT_MAX}};
    for (const float outgoing : odd) {
        for (const float incoming : odd) {
            for (const auto &[first, second] : places) {
                const auto table = TemporalTable::Build({first, second, outgoing, incoming});
                const std::int64_t span = std::int64_t{second} - first;
                for (const std::int64_t part : {1, 13, 50, 99}) {
                    const auto time =
                        static_cast<int>(first + std::clamp<std::int64_t>(span * part / 100, 1, span - 1));
                    const double t = table->Parameter(time);
                    EXPECT_TRUE(t >= 0 && t <= 1)
                        << t << " for handles " << outgoing << ", " << incoming << " from " << first;
                }
            }
        }
    }
}

TEST(TemporalCurveTest, ATableCountsForWhatItWasBuiltFromEvenIfThatIsNoNumber)
{
    const auto table = TemporalTable::Build({0, 100, 25, NAN});
    EXPECT_TRUE(table->IsBuiltFrom({0, 100, 25, NAN})) << "else it would be built at each evaluation";
    EXPECT_FALSE(table->IsBuiltFrom({0, 100, 25, 0}));
}

} // namespace
} // namespace marlet::test
