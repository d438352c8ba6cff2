#pragma once

#include <benchmark/benchmark.h>

#include <chrono>
#include <vector>

namespace bench
{

using Clock = std::chrono::steady_clock;

inline double SecondsSince(Clock::time_point start)
{
    return std::chrono::duration<double>(Clock::now() - start).count();
}

/// Times what makes a document, and not its destruction. For benchmarks with UseManualTime.
template <class Make> void TimeMaking(benchmark::State &state, Make &&make)
{
    for (auto _ : state) {
        const Clock::time_point start = Clock::now();
        const auto made = make();
        state.SetIterationTime(SecondsSince(start));
        benchmark::DoNotOptimize(&made);
    }
}

// For what is compared by its size, many small things are handled in one round, as much as of the large in
// all: caches then hold as little of the small as of the large, and only the growth with size shows. The time
// is that of one thing.

/// Times making that many things, by their number, and not their destruction.
template <class Make> void TimeMakingEach(benchmark::State &state, int count, Make &&make)
{
    for (auto _ : state) {
        std::vector<decltype(make(0))> made;
        made.reserve(static_cast<std::size_t>(count));
        const Clock::time_point start = Clock::now();
        for (int i = 0; i < count; ++i)
            made.push_back(make(i));
        state.SetIterationTime(SecondsSince(start) / count);
    }
}

/// Times the destruction of that many things, and not their making.
template <class Make> void TimeDroppingEach(benchmark::State &state, int count, Make &&make)
{
    for (auto _ : state) {
        std::vector<decltype(make(0))> made;
        for (int i = 0; i < count; ++i)
            made.push_back(make(i));
        const Clock::time_point start = Clock::now();
        made.clear();
        state.SetIterationTime(SecondsSince(start) / count);
    }
}

} // namespace bench
