#include <tests/support/LayerStage.h>

#include <gtest/gtest.h>

#include <limits>

namespace marlet::test
{
namespace
{

constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

TEST(LayerTime, TurnsFramesIntoMillisecondsAndBack)
{
    static constexpr struct {
        double rate;
        int start;
        int frame;
        int fromGlobal;
        int fromLayer;
    } kCases[] = {
        {30, 0, 1, 33, 33},           {30, 0, 2, 66, 66},           {30, 10, 5, -166, 166},
        {30, 10, 40, 1000, 1333},     {24, 0, -1, -41, -41},        {30000.0 / 1001, 3, 34, 1034, 1134},
        {30, kMin, kMax, kMax, kMax}, {30, kMax, kMin, kMin, kMin}, {0, 1, 0, kMin, 0},
    };
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    for (const auto &c : kCases) {
        SCOPED_TRACE(testing::Message() << c.rate << " " << c.start << " " << c.frame);
        stage.composition->Settings().SetFrameRate(c.rate);
        layer->SetStartFrame(c.start);
        EXPECT_EQ(layer->GlobalFrameToRelativeTime(c.frame, stage.Assets()), c.fromGlobal);
        EXPECT_EQ(layer->LayerFrameToRelativeTime(c.frame, stage.Assets()), c.fromLayer);
        stage.composition->SetCurrentTimeIndicator(c.frame);
        EXPECT_EQ(layer->PlayheadRelativeTime(stage.Assets()), c.fromGlobal);
        layer->SetStartFrame(c.frame);
        EXPECT_EQ(layer->StartTime(stage.Assets()), c.fromLayer);
    }
}

TEST(LayerTime, PassesFramesThroughSinglePrecision)
{
    static constexpr struct {
        int start;
        int time;
        float frame;
        int truncated;
    } kCases[] = {
        {0, 33, 0.99f, 0},
        {10, -40, 8.8f, 8},
        {16777217, 0, 16777216.f, 16777216},
        {kMax, kMax, 2.2119082e9f, kMax},
    };
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    for (const auto &c : kCases) {
        layer->SetStartFrame(c.start);
        EXPECT_FLOAT_EQ(layer->RelativeTimeToGlobalFrameF(c.time, stage.Assets()), c.frame);
        EXPECT_EQ(layer->RelativeTimeToGlobalFrame(c.time, stage.Assets()), c.truncated);
    }
}

TEST(LayerTime, ConvertsToTheTimeOfAnotherLayer)
{
    const LayerStage stage;
    const auto layer = stage.AddPoint();
    const auto other = stage.AddPoint();
    other->SetStartFrame(50);
    EXPECT_EQ(layer->RelativeTimeToLayerRelativeTime(2000, other, stage.project), 333);
    EXPECT_EQ(other->RelativeTimeToLayerRelativeTime(333, layer, stage.project), 1999);
    EXPECT_EQ(layer->RelativeTimeToLayerRelativeTime(2000, nullptr, stage.project), 0);
    // At so large a frame number single precision knows even frames only: frame 16777217 is 16777216.
    layer->SetStartFrame(16777217);
    other->SetStartFrame(16777210);
    EXPECT_EQ(layer->RelativeTimeToLayerRelativeTime(0, other, stage.project), 200);
}

TEST(LayerTime, MovesTheWholeSpan)
{
    static constexpr struct {
        int start, end, target, newEnd, length;
    } kCases[] = {
        {10, 40, 100, 130, 30},   {10, 40, -100, -70, 30},     {40, 10, 0, -30, -30},
        {0, kMax, kMax, kMax, 0}, {kMin, kMax, 0, kMax, kMax}, {kMax, kMin, -5, kMin, kMin + 5},
    };
    const auto layer = PointLayer::Create(u"");
    for (const auto &c : kCases) {
        layer->SetStartFrame(c.start);
        layer->SetEndFrame(c.end);
        layer->MoveLayer(c.target);
        EXPECT_EQ(layer->StartFrame(), c.target);
        EXPECT_EQ(layer->EndFrame(), c.newEnd);
        EXPECT_EQ(layer->Length(), c.length);
    }
}

} // namespace
} // namespace marlet::test
