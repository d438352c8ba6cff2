// What differs between two large projects, of whose layers one in a hundred is changed.

#include <bench/support/Documents.h>
#include <bench/support/HeapCounter.h>

#include <marlet/compare/Compare.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/Project.h>

#include <benchmark/benchmark.h>

#include <malloc.h>

using namespace bench;
using namespace marlet::project;

namespace
{

std::size_t HeldBytes()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

void ChangeLayers(Project &project)
{
    int place = 0;
    for (const auto &asset : project.Assets().GetByType(AssetType::Composition))
        for (const auto &layer : std::static_pointer_cast<CompositionAsset>(asset)->Layers())
            if (place++ % 100 == 0)
                layer->SetStartFrame(layer->StartFrame() + 1);
}

void Compare(benchmark::State &state)
{
    const WideString &text = TextOfMegabytes(static_cast<int>(state.range(0)));
    const std::size_t heldBefore = HeldBytes();
    const auto before = Load(text);
    const auto after = Load(text);
    const auto held = static_cast<double>(HeldBytes() - heldBefore);
    ChangeLayers(*after);
    for (auto _ : state) {
        const HeapCounter counter;
        const auto differences = marlet::project::Compare(*before, *after);
        if (differences.empty())
            state.SkipWithError("nothing differs");
        state.counters["heap"] = static_cast<double>(counter.PeakBytes()) / held;
    }
}

BENCHMARK(Compare)->Arg(1)->Arg(100)->Unit(benchmark::kMillisecond);

} // namespace
