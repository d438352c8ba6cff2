// Pieces of sound from anywhere in an hour of AAC, as the library hands them out, and by the least program
// that seeks and decodes them.

#include <bench/support/BareMedia.h>
#include <bench/support/MediaClips.h>
#include <bench/support/Stopwatch.h>

#include <marlet/platform/media/KyMedia.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaManager.h>

#include <filesystem>
#include <random>

namespace
{

using bench::Require;

constexpr int kPieceSamples = 4800;
constexpr int kHourSamples = 3600 * 48000;

/// The same places each time.
class Places
{
public:
    int Next() { return distribution_(engine_); }

private:
    std::mt19937 engine_;
    std::uniform_int_distribution<int> distribution_{0, kHourSamples - kPieceSamples};
};

void ReadSound(benchmark::State &state)
{
    marlet::project::MediaManager manager;
    const auto asset = manager.CreateMediaAsset(std::filesystem::path(bench::HourClip()).u16string());
    const auto sound = asset->AudioStream();
    bench::Bytes buffer(std::size_t{kPieceSamples} * sound->ChannelCount() * sound->BitsPerSample() / 8);
    Places places;
    const auto read = [&] {
        Require(sound->GetSamples(places.Next(), kPieceSamples, buffer.data(),
                                  static_cast<int>(buffer.size()), nullptr) == kyh::media::kSuccess);
    };
    read(); // opens what is needed
    for (auto _ : state)
        read();
}

void ReadSoundBare(benchmark::State &state)
{
    bench::BareSound sound(bench::HourClip());
    Places places;
    sound.Read(places.Next(), kPieceSamples);
    for (auto _ : state)
        sound.Read(places.Next(), kPieceSamples);
}

// Few places, so that nearly all of them are asked for the first time.
BENCHMARK(ReadSound)->Iterations(300)->Unit(benchmark::kMicrosecond);
BENCHMARK(ReadSoundBare)->Iterations(300)->Unit(benchmark::kMicrosecond);

} // namespace
