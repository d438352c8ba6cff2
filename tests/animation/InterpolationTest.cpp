#include <tests/support/OddCurves.h>
#include <tests/support/SlowCurves.h>

#include <marlet/animation/Interpolation.h>

#include <gtest/gtest.h>

namespace marlet::test
{
namespace
{

using namespace project;
using kytl::KyColorRGBA_32f;
using kytl::KyID;

const unsigned char kByte250 = 250;
const unsigned char kByte255 = 255;

struct StraightCase {
    PropertyValue a;
    PropertyValue b;
    int span;
    int offset;
    PropertyValue expected;
};

TEST(InterpolationTest, StraightPiecesRoundAsEachAlternativeDoes)
{
    const KyID id = KyID::Generate();
    const StraightCase cases[] = {
        {-1, -2, 10, 5, -2},
        {-1, -2, 10, 4, -1},
        {4294967295u, 0u, 4, 1, 3221225471u},
        {kByte255, kByte250, 10, 1, kByte255},
        {1.0f, 2.0f, 3, 1, 1.0f + 1.0f * (1.0f / 3.0f)},
        {false, true, 10, 9, false},
        {id, KyID::Generate(), 10, 9, id},
        {Scale3D{0, 0, 0}, Scale3D{1, 1e10, 16777217}, 1000000, 999999,
         Scale3D{0.999999f, 9999990000.0f, 16777200.0f}},
        {Point3D{0, 8, -4}, Point3D{4, 0, 4}, 4, 3, Point3D{3, 2, 2}},
    };
    for (const StraightCase &c : cases)
        EXPECT_EQ(Exactly(StraightValue(c.a, c.b, c.span, c.offset)), Exactly(c.expected)) << Exactly(c.a);
}

struct CurvedCase {
    PropertyValue a;
    PropertyValue b;
    double outgoing;
    double incoming;
    PropertyValue expected;
};

// In the middle of a curve, where its value is (a + b) / 2 + (outgoing + incoming) * 3 / 8.
TEST(InterpolationTest, CurvedPiecesGoThroughDoubleAndOneHandleServesAllComponents)
{
    const CurvedCase cases[] = {
        {-1, -2, 0, 0, -2},
        {0, 0, 1e30, 0, INT_MAX},
        {kByte250, kByte255, 8, 8, static_cast<unsigned char>(3)},      // 252.5 + 6, and half of one to round
        {kByte250, kByte255, -800, 0, static_cast<unsigned char>(209)}, // 253 - 300 = -47
        {0u, 0u, -8, 0, 4294967294u},                                   // -3 + 0.5, cut off at -2
        {1.0f, 2.0f, 8, -4, 3.0f},
        {Scale3D{0, 100, 16777217}, Scale3D{0, 50, 16777217}, 8, 8, Scale3D{6, 81, 16777222}},
        {Orientation3D{350, 0, -10}, Orientation3D{10, 720, 10}, 0, 0, Orientation3D{180, 360, 0}},
        {KyColorRGBA_32f{0, 1, 1, 1}, KyColorRGBA_32f{0, 1, 0, 1}, 8, 0, KyColorRGBA_32f{3, 4, 3.5f, 4}},
        {Point3D{0, 10, 2}, Point3D{4, 20, 2}, 8, 0, Point3D{5, 18, 5}},
    };
    for (const CurvedCase &c : cases)
        EXPECT_EQ(Exactly(CurvedValue(c.a, c.b, 0.5, c.outgoing, c.incoming)), Exactly(c.expected))
            << Exactly(c.a);
}

TEST(InterpolationTest, AStraightRotationGoesTheShortWayRound)
{
    struct Case {
        float from;
        float to;
        float degrees; // the short way
    };
    for (const Case &c : {Case{350, 10, 20}, Case{10, 350, -20}, Case{0, 170, 170}, Case{720, 30, 30}}) {
        for (int step = 0; step <= 20; ++step) {
            const double expected = c.from + c.degrees * static_cast<float>(step) / 20;
            const auto along = [&](const Orientation3D &a, const Orientation3D &b) {
                return boost::get<Orientation3D>(StraightValue(a, b, 20, step));
            };
            const auto isTurn = [&](float degrees) {
                const double off = std::remainder(degrees - expected, 360.0);
                return degrees >= 0 && degrees < 360 && std::abs(off) < 0.02;
            };
            EXPECT_PRED1(isTurn, along({c.from, 0, 0}, {c.to, 0, 0}).X) << step;
            EXPECT_PRED1(isTurn, along({0, 0, c.from}, {0, 0, c.to}).Z) << step;
        }
    }
}

} // namespace
} // namespace marlet::test
