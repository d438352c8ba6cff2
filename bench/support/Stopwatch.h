#pragma once

#include <benchmark/benchmark.h>

#include <chrono>

namespace bench
{

/// Times what makes a document, and not its destruction. For benchmarks with UseManualTime.
template <class Make> void TimeMaking(benchmark::State &state, Make &&make)
{
    using Clock = std::chrono::steady_clock;
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        const auto made = make();
        const Clock::time_point end = Clock::now();
        benchmark::DoNotOptimize(&made);
        state.SetIterationTime(std::chrono::duration<double>(end - start).count());
    }
}

} // namespace bench
