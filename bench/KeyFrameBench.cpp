// Changes of long lists of key frames. Each is followed by a question, so that nothing that is put off until
// then goes uncounted.

#include <bench/support/Documents.h>
#include <bench/support/Stopwatch.h>

#include <marlet/animation/PropertyManager.h>

#include <algorithm>
#include <random>
#include <vector>

using namespace bench;
using namespace marlet::project;

namespace
{

constexpr int kAdded = 100'000;
constexpr int kMoved = 20'000;

std::vector<KeyFrame> MakeKeyFrames()
{
    std::vector<KeyFrame> keys;
    for (int i = 0; i < kAdded; ++i)
        keys.emplace_back(i * kKeyDistance, ValueOfKey(i));
    return keys;
}

void Add(benchmark::State &state, const std::vector<KeyFrame> &keys)
{
    TimeMaking(state, [&keys] {
        KeyFrameList list;
        for (const KeyFrame &key : keys)
            list.Add(key);
        benchmark::DoNotOptimize(list.At(0).Value());
        return list;
    });
}

void AddInOrder(benchmark::State &state)
{
    Add(state, MakeKeyFrames());
}

void AddAtRandom(benchmark::State &state)
{
    std::vector<KeyFrame> keys = MakeKeyFrames();
    std::shuffle(keys.begin(), keys.end(), std::mt19937(1));
    Add(state, keys);
}

/// From anywhere to anywhere, in a list all of whose pieces have been asked for.
void MoveKeyFrame(benchmark::State &state)
{
    PropertyManager properties;
    properties.CreateProperty("opacity", 0.0F, PropertyManager::Type::Animatable, nullptr);
    Animate(properties, "opacity", kMoved);
    constexpr int end = kMoved * kKeyDistance;
    for (int time = 1; time < end; time += kKeyDistance)
        properties.ValueAtTime("opacity", time);
    KeyFrameList &list = properties.KeyFrames("opacity");
    const std::vector<kytl::KyID> ids = list.Identifiers();

    std::mt19937 random(1);
    for (auto _ : state) {
        const int time = static_cast<int>(random() % end);
        list.Move(ids[random() % ids.size()], time);
        benchmark::DoNotOptimize(list.At(time).Value());
    }
}

BENCHMARK(AddInOrder)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(AddAtRandom)->UseManualTime()->Unit(benchmark::kMillisecond);
BENCHMARK(MoveKeyFrame);

} // namespace
