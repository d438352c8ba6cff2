// One match of a feature in frames of full HD, by either method. A run keeps to a pace of its own, so that
// the match is measured by itself: its sources are built into the benchmark.

#include <marlet/tracking/FeatureMatch.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

using namespace marlet::project;

namespace
{

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

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
    const TrackingRectangles rectangles = {{100, 50}, {64, 64}, {0, 0}, {256, 256}};
    TrackingOptions options;
    options.colourMatching = bytesPerPixel == 4;
    for (auto _ : state) {
        const FeatureMatch match =
            MatchFeature({previous.data(), kWidth, kHeight, bytesPerPixel},
                         {next.data(), kWidth, kHeight, bytesPerPixel}, rectangles, method, options);
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

BENCHMARK(MatchByFlow)->Unit(benchmark::kMillisecond);
BENCHMARK(MatchByTemplate)->Unit(benchmark::kMillisecond);
BENCHMARK(MatchByTemplateInColour)->Unit(benchmark::kMillisecond);

} // namespace
