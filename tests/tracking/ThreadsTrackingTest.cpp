#include <tests/project/ClipFiles.h>
#include <tests/support/FakeMedia.h>
#include <tests/support/LayerStage.h>

#include <marlet/layers/AssetLayer.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/SolidAsset.h>
#include <marlet/tracking/Tracker.h>
#include <marlet/tracking/TrackingActiveObject.h>
#include <marlet/tracking/TrackingFrame.h>
#include <marlet/tracking/TrackingPoint.h>

#include <gmock/gmock.h>
#include <opencv2/core/utility.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cmath>
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

/// A textured square that moves by two pixels a frame.
struct MovingVideo : FakeVideo {
    int narrowsAt = -1; ///< the frame that has another size

    MovingVideo() { width = 96; }
    int GetFrame(int frame, media::KyImageChannels, unsigned char *buffer, int, int *, int) override
    {
        if (frame == narrowsAt)
            width /= 2;
        for (int place = 0; place < width * height; ++place) {
            const int x = place % width - width / 2 - (2 * frame - 20), y = place / width - height / 2;
            const bool isInside = std::abs(x) <= 6 && std::abs(y) <= 6;
            std::fill_n(buffer + 4 * place, 4,
                        static_cast<unsigned char>(isInside ? x * x * 31 + x * 7 + y * 57 : 90));
        }
        return 0;
    }
};

/// The same by colour alone: in gray the frames are plain.
struct MovingColours : MovingVideo {
    int GetFrame(int frame, media::KyImageChannels channels, unsigned char *buffer, int size, int *out,
                 int flags) override
    {
        MovingVideo::GetFrame(frame, channels, buffer, size, out, flags);
        for (unsigned char *pixel = buffer; pixel < buffer + 4 * width * height; pixel += 4) {
            const double colour = pixel[0] - 90;
            pixel[0] = static_cast<unsigned char>(std::lround(128 + 0.587 * colour));
            pixel[1] = static_cast<unsigned char>(std::lround(128 - 0.299 * colour));
            pixel[2] = 128;
            pixel[3] = 255;
        }
        return 0;
    }
};

struct Report {
    int frame;
    Point2 primary;
    Point2 secondary;
    bool isOnWorker;
};

/// Where the square is, if the asset is used from its first frame on.
Point2 Truth(int frame)
{
    return {static_cast<float>(2 * frame - 20), 0};
}

class Threads : public testing::Test
{
public:
    static void SetUpTestSuite() { cv::setNumThreads(1); }

    Threads()
    {
        file.video = video;
        Hand(*asset, &file, 0);
        Show(asset);
        tracker->SetMethod(Tracker::TrackerMethod::TemplateMatching);
    }

    void Show(const std::shared_ptr<AbstractAsset> &shown)
    {
        stage->project->Assets().All().Add(shown);
        layer = stage->Add(AssetLayer::Create(shown));
        layer->SetEndFrame(10);
    }
    StartResult Start(int time, Direction direction = Direction::Forwards,
                      Duration duration = Duration::UntilEnd)
    {
        reports.clear();
        tracker->PrimaryTrackingPoint()->Animation().StaticValue("featurePosition") = Truth(time);
        return run.Start(direction, duration, stage->project, layer, time, tracker, options);
    }
    /// Why the run that was started before has finished, each time that it says so.
    std::vector<FinishReason> Finish()
    {
        while (finishCount == 0)
            std::this_thread::yield();
        run.Stop();
        finishCount = 0;
        return std::exchange(finishes, {});
    }

    FakeFile file;
    std::shared_ptr<MovingVideo> video = std::make_shared<MovingVideo>();
    MediaManager manager;
    std::shared_ptr<MediaAsset> asset = manager.CreateMediaAsset(u"/no/such/clip.mov");
    std::shared_ptr<LayerStage> stage = std::make_shared<LayerStage>();
    std::shared_ptr<AssetLayer> layer;
    std::shared_ptr<Tracker> tracker = Tracker::Create(u"", {}, {8, 8}, 16, 30);
    TrackingOptions options;
    std::vector<Report> reports;
    std::vector<FinishReason> finishes;
    std::atomic<int> finishCount = 0;
    const std::thread::id self = std::this_thread::get_id();
    TrackingActiveObject run{
        [this](int frame, const Point2 &primary, const Point2 &secondary) {
            reports.push_back({frame, primary, secondary, std::this_thread::get_id() != self});
        },
        [this](FinishReason reason) {
            finishes.push_back(reason);
            ++finishCount;
        }};
};

TEST_F(Threads, RunsReportEachPositionAndWhyTheyEnd)
{
    constexpr auto kForwards = Direction::Forwards, kBackwards = Direction::Backwards;
    constexpr auto kOne = Duration::OneFrame, kAll = Duration::UntilEnd;
    const struct {
        int start;
        Direction direction;
        Duration duration;
        float tolerance;
        int narrowsAt;
        int assetStart;
        std::vector<int> frames;
        FinishReason reason;
    } cases[] = {{5, kForwards, kOne, 0.2f, -1, 0, {5, 6}, FinishReason::FrameDone},
                 {7, kForwards, kAll, 0.2f, -1, 0, {7, 8, 9}, FinishReason::LayerEndReached},
                 {2, kBackwards, kAll, 0.2f, -1, 0, {2, 1, 0}, FinishReason::LayerEndReached},
                 {5, kForwards, kAll, -1, -1, 0, {5, 6}, FinishReason::TargetLost},
                 {5, kForwards, kAll, 0.2f, 7, 0, {5, 6, 7}, FinishReason::TargetLost},
                 // The clip has a hundred frames, whatever the layer wants of it.
                 {4, kForwards, kAll, 99, -1, 94, {4, 5}, FinishReason::FrameUnavailable},
                 {4, kForwards, kAll, 0.2f, -1, -5, {4}, FinishReason::FrameUnavailable}};
    for (const auto &row : cases) {
        SCOPED_TRACE(&row - cases);
        file.video = video = std::make_shared<MovingVideo>();
        asset->Wake(); // drops the stream before
        video->narrowsAt = row.narrowsAt;
        options.errorTolerance = row.tolerance;
        layer->SetAssetInstanceStart(row.assetStart);
        const auto begin = std::chrono::steady_clock::now();
        ASSERT_EQ(Start(row.start, row.direction, row.duration), StartResult::Started);
        EXPECT_THAT(Finish(), ElementsAre(row.reason));
        if (row.reason == FinishReason::LayerEndReached) {
            EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(110));
        }
        ASSERT_EQ(reports.size(), row.frames.size());
        for (std::size_t i = 0; i < reports.size(); ++i) {
            EXPECT_EQ(reports[i].frame, row.frames[i]);
            EXPECT_EQ(reports[i].isOnWorker, i > 0);
            EXPECT_EQ(reports[i].secondary, (Point2{8, 8}));
            if (row.assetStart == 0) {
                // What is lost at once stays where it was.
                const int seen = row.frames[i] == row.narrowsAt ? row.frames[i] - 1 : row.frames[i];
                EXPECT_NEAR(reports[i].primary.X, Truth(seen).X, 0.1);
            }
        }
    }
}

TEST_F(Threads, RunsMatchInColourWhereTemplatesAreToAndElseInGray)
{
    const auto colours = std::make_shared<MovingColours>();
    file.video = colours;
    asset->Wake();
    using Method = Tracker::TrackerMethod;
    const std::tuple<Method, int, bool> cases[] = {{Method::TemplateMatching, 1, true},
                                                   {Method::TemplateMatching, 0, false},
                                                   {Method::TemplateMatching, 2, false},
                                                   {Method::OpticalFlow, 1, false}};
    for (const auto &[method, colourMatching, isSeen] : cases) {
        tracker->SetMethod(method);
        options.colourMatching = colourMatching;
        ASSERT_EQ(Start(5, Direction::Forwards, Duration::OneFrame), StartResult::Started);
        Finish();
        ASSERT_EQ(reports.size(), 2u);
        EXPECT_EQ(std::abs(reports.back().primary.X - Truth(6).X) < 0.3, isSeen)
            << static_cast<int>(method) << " " << colourMatching;
    }

    // What is gray is weighed by the order of the bytes.
    struct PlainVideo : FakeVideo {
        std::array<unsigned char, 4> pixel{};
        int GetFrame(int, media::KyImageChannels, unsigned char *buffer, int, int *, int) override
        {
            for (int i = 0; i < width * height; ++i)
                std::ranges::copy(pixel, buffer + 4 * i);
            return 0;
        }
    };
    const auto plain = std::make_shared<PlainVideo>();
    file.video = plain;
    asset->Wake();
    const std::pair<std::array<unsigned char, 4>, int> levels[] = {
        {{200, 0, 0, 9}, 60}, {{0, 200, 0, 9}, 117}, {{0, 0, 200, 9}, 23}, {{255, 255, 255, 9}, 255}};
    const auto stream = asset->VideoStream();
    TrackingFrame gray(*stream, false);
    for (const auto &[pixel, level] : levels) {
        plain->pixel = pixel;
        ASSERT_TRUE(gray.Read(*stream, plain->FrameRate(), 0));
        EXPECT_EQ(gray.Image().pixels[5], level);
    }
}

TEST_F(Threads, RunsFollowBothPointsFromWhereTheyAreAtThePlayheadAndOutliveTheirProject)
{
    // At frame 3 of the layer, which is at 100 ms, whatever frame the run starts at.
    stage->composition->SetCurrentTimeIndicator(3);
    for (const auto &point : {tracker->PrimaryTrackingPoint(), tracker->SecondaryTrackingPoint()}) {
        point->Animation().KeyFrames("featurePosition").Add(KeyFrame(100, Truth(5)));
        point->Animation().KeyFrames("featurePosition").Add(KeyFrame(166, Point2{40, 40}));
    }
    tracker->SetType(Tracker::TrackerType::TwoPoints);
    Start(5);
    layer.reset();
    tracker.reset();
    asset.reset();
    stage.reset();
    EXPECT_THAT(Finish(), ElementsAre(FinishReason::LayerEndReached));
    EXPECT_EQ(reports.front().primary, Truth(5));
    EXPECT_NEAR(reports.back().primary.X, Truth(9).X, 0.2);
    EXPECT_NEAR(reports.back().secondary.X, Truth(9).X, 0.2);
}

TEST_F(Threads, RunsStartOnlyWhereThereIsSomethingToFollowAndEndTheOneBefore)
{
    const std::tuple<int, Direction, StartResult> cases[] = {
        {-1, Direction::Forwards, StartResult::TimeOutOfRange},
        {10, Direction::Backwards, StartResult::TimeOutOfRange},
        {9, Direction::Forwards, StartResult::NothingToTrack},
        {0, Direction::Backwards, StartResult::NothingToTrack}};
    for (const auto &[time, direction, result] : cases) {
        ASSERT_EQ(Start(1), StartResult::Started);
        EXPECT_EQ(run.Start(direction, Duration::UntilEnd, stage->project, layer, time, tracker, options),
                  result);
        EXPECT_NE(reports.back().frame, time);
        EXPECT_THAT(Finish(), ElementsAre(FinishReason::Stopped));
    }
    Show(SolidAsset::Create(u"", {}, 10, 10, PAR{}));
    EXPECT_EQ(Start(1), StartResult::NoVideo);

    const auto startWith = [&](const auto &project, const auto &shown, const auto &followed) {
        run.Start(Direction::Forwards, Duration::UntilEnd, project, shown, 1, followed, options);
    };
    EXPECT_THROW(startWith(nullptr, layer, tracker), std::invalid_argument);
    EXPECT_THROW(startWith(stage->project, nullptr, tracker), std::invalid_argument);
    EXPECT_THROW(startWith(stage->project, layer, nullptr), std::invalid_argument);
}

TEST_F(Threads, RunsFinishOnceEachHoweverTheyAreDisturbed)
{
    const ClipFiles clips;
    const WideString paths[] = {clips.Write("dark.mov", 40), clips.Write("bright.mov", 200)};
    auto clip = manager.CreateMediaAsset(paths[0]);
    Show(clip);
    std::atomic<bool> stopReading = false;
    std::thread reader([clip, &stopReading] {
        std::vector<unsigned char> buffer(ClipFiles::kWidth * ClipFiles::kHeight * 4);
        for (int frame = 0; !stopReading; frame = (frame + 3) % ClipFiles::kFrames) {
            clip->VideoStream()->GetFrame(frame, media::KyImageChannels::Four, buffer.data(),
                                          static_cast<int>(buffer.size()), nullptr, 0);
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    std::mt19937 random(11);
    std::atomic<int> finished = 0;
    int started = 0;
    std::unique_ptr<TrackingActiveObject> disturbed;
    for (int i = 0; i < 300; ++i) {
        if (!disturbed)
            disturbed = std::make_unique<TrackingActiveObject>([](int, const Point2 &, const Point2 &) {},
                                                               [&finished](FinishReason) { ++finished; });
        started += disturbed->Start(Direction::Forwards, Duration::UntilEnd, stage->project, layer, 0,
                                    tracker, options) == StartResult::Started;
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 20000));
        const auto what = random() % 5; // any other number: it is started again at once
        if (what == 0)
            disturbed->Stop();
        if (what == 1)
            disturbed.reset();
        if (what == 2) {
            manager.SleepAll();
            manager.WakeAll();
        }
        if (what == 3)
            manager.RelinkMediaFile(clip, paths[i % 2]);
    }
    disturbed.reset();
    stopReading = true;
    reader.join();
    EXPECT_EQ(started, 300);
    EXPECT_EQ(finished, started);
}

} // namespace
} // namespace marlet::test
