#include <tests/project/ClipFiles.h>
#include <tests/support/FakeMedia.h>
#include <tests/support/LayerStage.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingActiveObject.h>
#include <marlet/tracking/TrackingPoint.h>

#include <gmock/gmock.h>
#include <opencv2/core/utility.hpp>

#include <atomic>
#include <chrono>
#include <random>
#include <thread>

namespace marlet::test
{
namespace
{

using Direction = TrackingActiveObject::Direction;
using Duration = TrackingActiveObject::Duration;
using FinishReason = TrackingActiveObject::FinishReason;
using StartResult = TrackingActiveObject::StartResult;
using Point2 = TrackingActiveObject::Point;
using testing::ElementsAre;

/// A textured square that moves by two pixels a frame, to be seen at (2 * frame - 20, 0).
struct MovingVideo : FakeVideo {
    int narrowsAt = -1; ///< the frame that has another size

    int GetFrame(int frame, media::KyImageChannels, unsigned char *buffer, int, int *, int) override
    {
        if (frame == narrowsAt)
            width /= 2;
        for (int place = 0; code == 0 && place < width * height; ++place) {
            const int column = place % width - width / 2 - (2 * frame - 20), row = place / width - height / 2;
            const bool isInside = std::abs(column) <= 6 && std::abs(row) <= 6;
            std::fill_n(buffer + 4 * place, 4,
                        isInside ? (column * column * 31 + row * 57 + column * 7) & 255 : 90);
        }
        return code;
    }
};

class Threads : public testing::Test
{
protected:
    static void SetUpTestSuite() { cv::setNumThreads(1); }

    Threads()
    {
        file->video = video;
        video->width = 96;
        Hand(*asset, file.get(), 0);
        stage->project->Assets().All().Add(asset);
        layer->SetEndFrame(10);
        tracker->SetMethod(Tracker::TrackerMethod::TemplateMatching);
    }

    StartResult Start(int time, Direction direction = Direction::Forwards,
                      Duration duration = Duration::UntilEnd)
    {
        frames.clear();
        positions.clear();
        return run.Start(direction, duration, stage->project, layer, time, tracker, options);
    }
    std::vector<FinishReason> AwaitFinish()
    {
        while (finishCount == 0)
            std::this_thread::yield();
        run.Stop();
        finishCount = 0;
        return std::exchange(finishes, {});
    }
    /// The primary position at the start of frame 5.
    static Point2 Truth(int frame) { return {static_cast<float>(2 * frame - 20), 0}; }
    void SetPosition(const std::shared_ptr<TrackingPoint> &point, Point2 position)
    {
        point->Animation().StaticValue("featurePosition") = position;
    }

    std::shared_ptr<MovingVideo> video = std::make_shared<MovingVideo>();
    std::shared_ptr<FakeFile> file = std::make_shared<FakeFile>();
    MediaManager manager;
    std::shared_ptr<MediaAsset> asset = manager.CreateMediaAsset(u"/no/such/clip.mov");
    std::shared_ptr<LayerStage> stage = std::make_shared<LayerStage>();
    std::shared_ptr<AssetLayer> layer = stage->Add(AssetLayer::Create(asset));
    std::shared_ptr<Tracker> tracker = Tracker::Create(u"", {}, {8, 8}, 16, 30);
    TrackingOptions options;
    std::vector<int> frames;
    std::vector<std::pair<Point2, Point2>> positions;
    std::vector<std::thread::id> threads;
    std::vector<FinishReason> finishes;
    std::atomic<int> finishCount = 0;
    TrackingActiveObject run{[this](int frame, const Point2 &primary, const Point2 &secondary) {
                                 frames.push_back(frame);
                                 positions.emplace_back(primary, secondary);
                                 threads.push_back(std::this_thread::get_id());
                             },
                             [this](FinishReason reason) {
                                 finishes.push_back(reason);
                                 ++finishCount;
                             }};
};

TEST_F(Threads, RunsReportEachPositionAndWhyTheyEnd)
{
    const struct {
        const char *name;
        int start;
        Direction direction;
        Duration duration;
        std::function<void(Threads &)> prepare;
        std::vector<int> frames;
        FinishReason reason;
    } cases[] = {
        {"one frame", 5, Direction::Forwards, Duration::OneFrame, {}, {5, 6}, FinishReason::FrameDone},
        {"to the end",
         7,
         Direction::Forwards,
         Duration::UntilEnd,
         {},
         {7, 8, 9},
         FinishReason::LayerEndReached},
        {"to the start",
         2,
         Direction::Backwards,
         Duration::UntilEnd,
         {},
         {2, 1, 0},
         FinishReason::LayerEndReached},
        {"lost",
         5,
         Direction::Forwards,
         Duration::UntilEnd,
         [](Threads &t) { t.options.errorTolerance = -1; },
         {5, 6},
         FinishReason::TargetLost},
        {"narrower",
         5,
         Direction::Forwards,
         Duration::UntilEnd,
         [](Threads &t) { t.video->narrowsAt = 7; },
         {5, 6},
         FinishReason::FrameUnavailable},
        {"does not decode",
         5,
         Direction::Forwards,
         Duration::UntilEnd,
         [](Threads &t) { t.video->code = 13; },
         {5},
         FinishReason::FrameUnavailable},
    };
    for (const auto &row : cases) {
        *video = MovingVideo();
        video->width = 96;
        options = {};
        if (row.prepare)
            row.prepare(*this);
        SetPosition(tracker->PrimaryTrackingPoint(), Truth(row.start));
        threads.clear();
        const auto begin = std::chrono::steady_clock::now();
        ASSERT_EQ(Start(row.start, row.direction, row.duration), StartResult::Started) << row.name;
        EXPECT_THAT(AwaitFinish(), ElementsAre(row.reason)) << row.name;
        ASSERT_EQ(frames, row.frames) << row.name;
        for (std::size_t i = 0; i < frames.size(); ++i) {
            EXPECT_NEAR(positions[i].first.X, Truth(frames[i]).X, 0.1) << row.name;
            EXPECT_EQ(positions[i].second, (Point2{8, 8})) << row.name;
            EXPECT_EQ(threads[i] == std::this_thread::get_id(), i == 0) << row.name;
        }
        if (row.reason == FinishReason::LayerEndReached)
            EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(100)) << row.name;
    }

    // The clip has a hundred frames, whatever the layer wants of it.
    layer->SetAssetInstanceStart(94);
    SetPosition(tracker->PrimaryTrackingPoint(), Truth(98));
    Start(4);
    EXPECT_THAT(AwaitFinish(), ElementsAre(FinishReason::TargetLost)); // the square has left the picture
    Start(6);
    EXPECT_THAT(AwaitFinish(), ElementsAre(FinishReason::FrameUnavailable));
}

TEST_F(Threads, RunsFollowBothPointsFromWhereTheyAreAtThePlayhead)
{
    // At frame 3 of the layer, which is at 100 ms, whatever frame the run starts at.
    stage->composition->SetCurrentTimeIndicator(3);
    for (const auto &point : {tracker->PrimaryTrackingPoint(), tracker->SecondaryTrackingPoint()}) {
        point->Animation().KeyFrames("featurePosition").Add(KeyFrame(100, Truth(5)));
        point->Animation().KeyFrames("featurePosition").Add(KeyFrame(166, Point2{40, 40}));
    }
    tracker->SetType(Tracker::TrackerType::TwoPoints);
    Start(5, Direction::Forwards, Duration::OneFrame);
    AwaitFinish();
    EXPECT_EQ(positions[0].first, Truth(5));
    EXPECT_NEAR(positions[1].first.X, Truth(6).X, 0.1);
    EXPECT_NEAR(positions[1].second.X, Truth(6).X, 0.1);
}

TEST_F(Threads, RunsStartOnlyWhereThereIsSomethingToFollowAndEndTheOneBefore)
{
    SetPosition(tracker->PrimaryTrackingPoint(), Truth(1));
    const struct {
        int time;
        Direction direction;
        StartResult result;
    } cases[] = {{-1, Direction::Forwards, StartResult::TimeOutOfRange},
                 {10, Direction::Backwards, StartResult::TimeOutOfRange},
                 {9, Direction::Forwards, StartResult::NothingToTrack},
                 {0, Direction::Backwards, StartResult::NothingToTrack}};
    for (const auto &row : cases) {
        ASSERT_EQ(Start(1), StartResult::Started);
        EXPECT_EQ(Start(row.time, row.direction), row.result) << row.time;
        EXPECT_THAT(frames, testing::IsEmpty());
        EXPECT_THAT(AwaitFinish(), ElementsAre(FinishReason::Stopped));
    }
    const auto solid = SolidAsset::Create(u"", {}, 10, 10, PAR{});
    stage->project->Assets().All().Add(solid);
    layer = stage->Add(AssetLayer::Create(solid));
    layer->SetEndFrame(10);
    EXPECT_EQ(Start(1), StartResult::NoVideo);
}

TEST_F(Threads, RunsFinishOnceEachHoweverTheyAreDisturbed)
{
    const ClipFiles clips;
    const WideString paths[] = {clips.Write("dark.mov", 40), clips.Write("bright.mov", 200)};
    auto clip = manager.CreateMediaAsset(paths[0]);
    ASSERT_FALSE(clip->IsOffline());
    stage->project->Assets().All().Add(clip);
    layer = stage->Add(AssetLayer::Create(clip));
    layer->SetEndFrame(ClipFiles::kFrames);

    std::atomic<bool> stopReading = false;
    std::thread reader([clip, &stopReading] {
        std::vector<unsigned char> buffer(ClipFiles::kWidth * ClipFiles::kHeight * 4);
        for (int frame = 0; !stopReading; frame = (frame + 3) % ClipFiles::kFrames) {
            clip->VideoStream()->GetFrame(frame, media::KyImageChannels::Four, buffer.data(),
                                          static_cast<int>(buffer.size()), nullptr, 0);
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    });
    std::mt19937 random(11);
    std::atomic<int> finished = 0;
    int started = 0;
    const auto newRun = [&finished] {
        return std::make_unique<TrackingActiveObject>([](int, const Point2 &, const Point2 &) {},
                                                      [&finished](FinishReason) { ++finished; });
    };
    auto disturbed = newRun();
    for (int i = 0; i < 300; ++i) {
        started += disturbed->Start(Direction::Forwards, Duration::UntilEnd, stage->project, layer, 0,
                                    tracker, options) == StartResult::Started;
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
        switch (random() % 5) {
        case 0:
            disturbed->Stop();
            break;
        case 1:
            disturbed = newRun();
            break;
        case 2:
            manager.SleepAll();
            manager.WakeAll();
            break;
        case 3:
            manager.RelinkMediaFile(clip, paths[i % 2]);
            break;
        default: // started again at once
            break;
        }
    }
    disturbed.reset();
    stopReading = true;
    reader.join();
    EXPECT_EQ(started, 300);
    EXPECT_EQ(finished, started);
}

TEST_F(Threads, RunsOutliveTheirProject)
{
    SetPosition(tracker->PrimaryTrackingPoint(), Truth(5));
    Start(5);
    layer.reset();
    tracker.reset();
    asset.reset();
    stage.reset();
    EXPECT_THAT(AwaitFinish(), ElementsAre(FinishReason::LayerEndReached));
}

} // namespace
} // namespace marlet::test
