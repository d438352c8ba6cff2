// One match of a feature in frames of full HD, by either method, and frames and matches in turn in both
// directions of a clip. A run keeps to a pace of its own, so that what it does between its pauses is measured
// by itself: its sources are built into the benchmark.

#include <bench/support/BareMedia.h>
#include <bench/support/MediaClips.h>
#include <bench/support/Stopwatch.h>

#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/tracking/FeatureMatch.h>
#include <marlet/tracking/TrackingFrame.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <filesystem>
#include <vector>

using namespace marlet::project;

namespace
{

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
const TrackingRectangles kRectangles = {{100, 50}, {64, 64}, {0, 0}, {256, 256}};

/// A texture that has moved by some pixels.
std::vector<unsigned char> Frame(float x, float y, int bytesPerPixel)
{
    std::vector<unsigned char> pixels;
    for (int row = 0; row < kHeight; ++row) {
        for (int column = 0; column < kWidth; ++column) {
            const float u = static_cast<float>(column) - x;
            const float v = static_cast<float>(row) - y;
            const float wave =
                std::sin(0.31f * u) * std::cos(0.23f * v) + std::sin(0.05f * u * std::cos(0.02f * v));
            pixels.insert(pixels.end(), static_cast<std::size_t>(bytesPerPixel),
                          static_cast<unsigned char>(128 + 60 * wave));
        }
    }
    return pixels;
}

void MatchOneFeature(benchmark::State &state, Tracker::TrackerMethod method, int bytesPerPixel)
{
    const std::vector<unsigned char> previous = Frame(0, 0, bytesPerPixel);
    const std::vector<unsigned char> next = Frame(5.3f, -3.6f, bytesPerPixel);
    TrackingOptions options;
    options.colourMatching = bytesPerPixel == 4;
    for (auto _ : state) {
        const FeatureMatch match =
            MatchFeature({previous.data(), kWidth, kHeight, bytesPerPixel},
                         {next.data(), kWidth, kHeight, bytesPerPixel}, kRectangles, method, options);
        if (match.isLost)
            state.SkipWithError("The feature is lost");
    }
}

void MatchByFlow(benchmark::State &state)
{
    MatchOneFeature(state, Tracker::TrackerMethod::OpticalFlow, 1);
}

void MatchByTemplate(benchmark::State &state)
{
    MatchOneFeature(state, Tracker::TrackerMethod::TemplateMatching, 1);
}

void MatchByTemplateInColour(benchmark::State &state)
{
    MatchOneFeature(state, Tracker::TrackerMethod::TemplateMatching, 4);
}

/// The time of a whole clip is that of a frame.
void TrackAll(benchmark::State &state, int first, int step)
{
    for (auto _ : state) {
        MediaManager manager;
        const auto asset = manager.CreateMediaAsset(std::filesystem::path(bench::HdClip()).u16string());
        const auto video = asset->VideoStream();
        bench::Require(video != nullptr);
        TrackingFrame frames[] = {TrackingFrame(*video, false), TrackingFrame(*video, false)};
        const bench::Clock::time_point start = bench::Clock::now();
        for (int i = 0; i < bench::kHdFrames; ++i) {
            bench::Require(frames[i % 2].Read(*video, video->FrameRate(), first + i * step));
            if (i == 0)
                continue;
            const FeatureMatch match =
                MatchFeature(frames[1 - i % 2].Image(), frames[i % 2].Image(), kRectangles,
                             Tracker::TrackerMethod::OpticalFlow, TrackingOptions());
            benchmark::DoNotOptimize(match.position);
        }
        state.SetIterationTime(bench::SecondsSince(start) / bench::kHdFrames);
    }
}

void TrackForwards(benchmark::State &state)
{
    TrackAll(state, 0, 1);
}

void TrackBackwards(benchmark::State &state)
{
    TrackAll(state, bench::kHdFrames - 1, -1);
}

BENCHMARK(TrackForwards)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(TrackBackwards)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(MatchByFlow)->Unit(benchmark::kMillisecond);
BENCHMARK(MatchByTemplate)->Unit(benchmark::kMillisecond);
BENCHMARK(MatchByTemplateInColour)->Unit(benchmark::kMillisecond);

} // namespace
