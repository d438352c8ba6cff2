// The value of a curved float property, beside a bare program. Every piece has been asked for once before the
// clock starts.

#include <bench/support/BareCurve.h>
#include <bench/support/Documents.h>
#include <bench/support/HeapCounter.h>

#include <marlet/animation/PropertyManager.h>

#include <benchmark/benchmark.h>

#include <boost/variant/get.hpp>

#include <cmath>
#include <map>
#include <numeric>
#include <random>
#include <vector>

using namespace bench;
using marlet::project::PropertyManager;

namespace
{

constexpr char kName[] = "opacity";

struct Curve {
    std::shared_ptr<PropertyManager> properties = PropertyManager::Create();
    PropertyManager::PropertyID id;
    BareCurve bare;
    int end;

    explicit Curve(int keyCount) : end((keyCount - 1) * kKeyDistance)
    {
        properties->CreateProperty(kName, 0.0F, PropertyManager::Type::Animatable, &id);
        Animate(*properties, kName, keyCount);
        for (int i = 0; i < keyCount; ++i)
            bare.Add({static_cast<double>(i * kKeyDistance), ValueOfKey(i), -kEase, 0, kEase, 0});
        for (int time = 1; time < end; time += kKeyDistance)
            ByID(time);
    }

    float ByID(int time) const { return boost::get<float>(properties->ValueAtTime(id, time)); }
    float ByName(int time) const { return boost::get<float>(properties->ValueAtTime(kName, time)); }
    float Bare(int time) const { return static_cast<float>(bare.ValueAt(time)); }
};

const Curve &CurveOf(std::int64_t keyCount)
{
    static std::map<std::int64_t, Curve> curves;
    return curves.try_emplace(keyCount, static_cast<int>(keyCount)).first->second;
}

/// One millisecond after the other, through the whole curve.
std::vector<int> TimesInOrder(int end)
{
    std::vector<int> times(static_cast<std::size_t>(end));
    std::iota(times.begin(), times.end(), 0);
    return times;
}

std::vector<int> RandomTimes(int end)
{
    std::mt19937 random(1);
    std::uniform_int_distribution<int> anywhere(0, end);
    std::vector<int> times(1 << 14);
    for (int &time : times)
        time = anywhere(random);
    return times;
}

using Way = float (Curve::*)(int) const;

template <Way way> void Evaluate(benchmark::State &state, const Curve &curve, const std::vector<int> &times)
{
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize((curve.*way)(times[i]));
        i = (i + 1) % times.size();
    }
}

template <Way way> void InOrder(benchmark::State &state)
{
    const Curve &curve = CurveOf(state.range(0));
    Evaluate<way>(state, curve, TimesInOrder(curve.end));
}

template <Way way> void AtRandom(benchmark::State &state)
{
    const Curve &curve = CurveOf(state.range(0));
    Evaluate<way>(state, curve, RandomTimes(curve.end));
}

/// Whether the two programs that are compared compute the same curve, and what the library's takes from the
/// heap.
void ValueAllocations(benchmark::State &state)
{
    const Curve &curve = CurveOf(1000);
    const std::vector<int> times = RandomTimes(curve.end);
    for (auto _ : state) {
        const HeapCounter counter;
        for (int time : times)
            benchmark::DoNotOptimize(curve.ByID(time));
        state.counters["allocations"] = static_cast<double>(counter.Allocations());
    }
    // The library's tables step through whole milliseconds, so the two agree to a few hundredths of the
    // range.
    for (int time : times)
        if (std::abs(curve.ByID(time) - curve.Bare(time)) > 4)
            state.SkipWithError("the bare program computes another curve");
}

BENCHMARK(InOrder<&Curve::ByID>)->Name("InOrder/ByID")->Arg(1000);
BENCHMARK(InOrder<&Curve::Bare>)->Name("InOrder/Bare")->Arg(1000);
BENCHMARK(InOrder<&Curve::ByName>)->Name("InOrder/ByName")->Arg(1000);
BENCHMARK(AtRandom<&Curve::ByID>)->Name("AtRandom/ByID")->Arg(1000)->Arg(100000);
BENCHMARK(AtRandom<&Curve::Bare>)->Name("AtRandom/Bare")->Arg(1000);
BENCHMARK(ValueAllocations)->Iterations(1);

} // namespace
