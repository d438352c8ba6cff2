// Opening media files, many short ones and long ones, as the library does it and by bare loops. What it takes
// of memory is measured in processes of their own and reported as counters.

#include <bench/support/BareMedia.h>
#include <bench/support/MediaClips.h>
#include <bench/support/MediaInProcess.h>
#include <bench/support/Stopwatch.h>

#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaManager.h>

#include <exception>
#include <memory>

namespace
{

using marlet::project::MediaManager;
using marlet::project::WideString;

/// The manager is kept beside its assets, and not timed when it ends.
auto Open(const std::vector<WideString> &clips, const WideString &indexFolder = {})
{
    auto manager = std::make_unique<MediaManager>();
    manager->SetIndexFolder(indexFolder);
    for (const auto &asset : manager->CreateMediaAssets(clips))
        bench::Require(!asset->IsOffline());
    return manager;
}

std::vector<WideString> Wide(const std::vector<std::string> &paths)
{
    std::vector<WideString> wide;
    for (const std::string &path : paths)
        wide.push_back(marlet::project::FromUtf8(path));
    return wide;
}

void OpenShortClipsBare(benchmark::State &state)
{
    const std::vector<std::string> &clips = bench::ShortClips();
    for (auto _ : state)
        for (const std::string &clip : clips)
            bench::OpenBare(clip, false);
}

void OpenShortClips(benchmark::State &state)
{
    const std::vector<WideString> clips = Wide(bench::ShortClips());
    bench::TimeMaking(state, [&] { return Open(clips); });
}

void OpenShortClipsKept(benchmark::State &state)
{
    const std::vector<WideString> clips = Wide(bench::ShortClips());
    const WideString folder = marlet::project::FromUtf8(bench::FileOfClips("kept"));
    Open(clips, folder);
    bench::TimeMaking(state, [&] { return Open(clips, folder); });
}

void OpenHdBare(benchmark::State &state)
{
    const std::string &clip = bench::HdClip();
    for (auto _ : state)
        bench::OpenBare(clip, true);
}

void OpenHd(benchmark::State &state)
{
    const std::vector<WideString> clips = Wide({bench::HdClip()});
    bench::TimeMaking(state, [&] { return Open(clips); });
}

void OpenHourBare(benchmark::State &state)
{
    const std::string &clip = bench::HourClip();
    for (auto _ : state)
        bench::OpenBare(clip, false);
}

void OpenHour(benchmark::State &state)
{
    const std::vector<WideString> clips = Wide({bench::HourClip()});
    bench::TimeMaking(state, [&] { return Open(clips); });
}

void OpenInProcess(benchmark::State &state, std::vector<std::string> clips)
{
    for (auto _ : state) {
        try {
            const bench::OpenedClips opened = bench::MeasureOpening(clips);
            state.SetIterationTime(opened.seconds);
            state.counters["megabytes"] = opened.megabytes;
            state.counters["per_clip"] = opened.megabytes / static_cast<double>(clips.size());
            state.counters["threads"] = opened.threads;
        } catch (const std::exception &error) {
            state.SkipWithError(error.what());
        }
    }
}

void OpenedShortClips(benchmark::State &state)
{
    OpenInProcess(state, bench::ShortClips());
}

void OpenManyClips(benchmark::State &state)
{
    std::vector<std::string> clips = bench::ManyClips();
    clips.resize(static_cast<std::size_t>(state.range(0)));
    OpenInProcess(state, std::move(clips));
}

void ReadAtRandom(benchmark::State &state)
{
    constexpr double kBudget = 256;
    for (auto _ : state) {
        try {
            state.counters["beyond"] = bench::MeasureRandomReading(bench::HdClips()) - kBudget;
        } catch (const std::exception &error) {
            state.SkipWithError(error.what());
        }
    }
}

BENCHMARK(OpenShortClipsBare)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenShortClips)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenShortClipsKept)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenHdBare)->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenHd)->UseManualTime()->Iterations(3)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenHourBare)->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenHour)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(OpenedShortClips)->UseManualTime()->Iterations(1)->Repetitions(1);
BENCHMARK(OpenManyClips)->UseManualTime()->Iterations(1)->Repetitions(1)->Arg(1000)->Arg(10000);
BENCHMARK(ReadAtRandom)->Iterations(1)->Repetitions(1);

} // namespace
