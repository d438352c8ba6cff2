// World matrices: of a layer three parents deep, of the same point, light and camera layers asked by two
// threads, and of a stack of layers that a file has just told of.

#include <bench/support/Documents.h>
#include <bench/support/HeapCounter.h>
#include <bench/support/Stopwatch.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/layers/CameraLayer.h>
#include <marlet/layers/LightLayer.h>
#include <marlet/layers/PointLayer.h>
#include <marlet/project/CompositionAsset.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <thread>
#include <vector>

using namespace bench;
using namespace marlet::project;

namespace
{

constexpr int kKeys = 100;
constexpr int kEnd = (kKeys - 1) * kKeyDistance;

void AnimatePlacement(AbstractLayer &layer)
{
    for (const char *name : {"position", "scale", "rotationX", "rotationY", "rotationZ"})
        if (layer.Animation().HasProperty(name))
            Animate(layer.Animation(), name, kKeys);
}

/// Layers that hang on one another, each moving.
struct Chain {
    Document document;
    std::shared_ptr<AbstractLayer> last;

    explicit Chain(int parents)
    {
        for (int i = 0; i <= parents; ++i)
            Hang(PointLayer::Create(u"Layer"));
    }

    void Hang(const std::shared_ptr<AbstractLayer> &layer)
    {
        AnimatePlacement(*layer);
        if (last)
            layer->SetParentLayer(last);
        document.Add(layer);
        last = layer;
    }

    void Ask(const AbstractLayer &layer, int time) const
    {
        benchmark::DoNotOptimize(layer.WorldTransformationAtTime(time, document.project, false));
    }
};

struct Scene : Chain {
    std::shared_ptr<PointLayer> point = PointLayer::Create(u"Point");
    std::shared_ptr<LightLayer> light = LightLayer::Create(u"Light", LightLayer::LightType{1});
    std::shared_ptr<CameraLayer> camera = CameraLayer::Create(u"Camera", 25, 1000, 1000, 100);

    Scene() : Chain(0)
    {
        const auto root = last;
        for (const std::shared_ptr<AbstractLayer> &layer :
             {std::shared_ptr<AbstractLayer>(point), std::shared_ptr<AbstractLayer>(light),
              std::shared_ptr<AbstractLayer>(camera)}) {
            last = root;
            Hang(layer);
        }
        light->SetAutoOrientation(AutoOrient::TowardsTarget);
        camera->SetAutoOrientation(AutoOrient::TowardsTarget);
        for (int time = 0; time < kEnd; ++time)
            AskAll(time);
    }

    void AskAll(int time) const
    {
        Ask(*point, time);
        Ask(*light, time);
        Ask(*camera, time);
    }
};

void WorldThreeParentsDeep(benchmark::State &state)
{
    const Chain chain(3);
    for (int time = 0; time < kEnd; ++time)
        chain.Ask(*chain.last, time);
    int time = 0;
    for (auto _ : state) {
        chain.Ask(*chain.last, time);
        time = (time + 1) % kEnd;
    }
    const HeapCounter counter;
    for (time = 0; time < kEnd; ++time)
        chain.Ask(*chain.last, time);
    state.counters["allocations"] = static_cast<double>(counter.Allocations());
}

/// So many threads ask the same scene at once. The time is that of one question, by the clock on the wall
/// from the first start to the last end, so that threads which wait for one another show.
void WorldOfScene(benchmark::State &state)
{
    constexpr int kRounds = 10;
    static const Scene scene;
    const auto askOften = [] {
        for (int round = 0; round < kRounds; ++round)
            for (int time = 0; time < kEnd; ++time)
                scene.AskAll(time);
    };
    const int threadCount = static_cast<int>(state.range(0));
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        std::vector<std::thread> others;
        for (int i = 1; i < threadCount; ++i)
            others.emplace_back(askOften);
        askOften();
        for (std::thread &other : others)
            other.join();
        const std::chrono::duration<double> wall = std::chrono::steady_clock::now() - start;
        state.SetIterationTime(wall.count() / (threadCount * kRounds * kEnd));
    }
}

/// Layers without animation on one parent, the last of them all, which they know by its ID alone.
struct Stack {
    Document document;

    explicit Stack(std::int64_t layerCount)
    {
        const auto parent = PointLayer::Create(u"Parent");
        for (std::int64_t i = 1; i < layerCount; ++i) {
            const auto layer = PointLayer::Create(u"Layer");
            layer->SetParentLayer(parent->ID());
            Add(layer);
        }
        Add(parent);
    }

    void AskAll() const
    {
        for (const auto &layer : std::as_const(*document.composition).Layers())
            benchmark::DoNotOptimize(layer->WorldTransformationAtTime(0, document.project, false));
    }

private:
    void Add(const std::shared_ptr<AbstractLayer> &layer)
    {
        document.Add(layer);
        layer->SetParentComposition(document.composition->ID());
    }
};

/// Asks a new stack for all its matrices, and times only the last pass.
void MatricesOfStack(benchmark::State &state, int passes)
{
    for (auto _ : state) {
        const Stack stack(state.range(0));
        for (int pass = 1; pass < passes; ++pass)
            stack.AskAll();
        const bench::Clock::time_point start = bench::Clock::now();
        stack.AskAll();
        state.SetIterationTime(bench::SecondsSince(start));
    }
}

void FirstMatrices(benchmark::State &state)
{
    MatricesOfStack(state, 1);
}

void SecondMatrices(benchmark::State &state)
{
    MatricesOfStack(state, 2);
}

BENCHMARK(WorldThreeParentsDeep);
BENCHMARK(FirstMatrices)->Arg(40'000)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
BENCHMARK(SecondMatrices)->Arg(40'000)->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
// The times are of one question and far below those of a round, so the number of rounds is given.
BENCHMARK(WorldOfScene)->Arg(1)->Arg(2)->UseManualTime()->Iterations(5);

} // namespace
