// The memory that a load takes, reported as counters; the time is that of a whole process and of no interest.

#include <bench/support/PeakOfLoad.h>

#include <benchmark/benchmark.h>

#include <exception>

namespace
{

void PeakOfLoad(benchmark::State &state)
{
    for (auto _ : state) {
        try {
            const bench::PeakOfLoad peak = bench::MeasurePeakOfLoad(static_cast<int>(state.range(0)));
            state.counters["heap"] = peak.heap;
            state.counters["resident"] = peak.resident;
        } catch (const std::exception &error) {
            state.SkipWithError(error.what());
        }
    }
}

BENCHMARK(PeakOfLoad)->Arg(1)->Arg(10)->Arg(100)->Iterations(1)->Repetitions(1);

} // namespace
