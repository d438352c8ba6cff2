// Validating a project in which nothing is wrong, so that what is measured is the walk.

#include <bench/support/Documents.h>
#include <bench/support/Stopwatch.h>

#include <marlet/checks/Validate.h>
#include <marlet/project/Project.h>

using namespace bench;

namespace
{

void Validate(benchmark::State &state)
{
    const auto project = bench::Load(TextOfMegabytes(static_cast<int>(state.range(0))));
    for (auto _ : state) {
        auto findings = marlet::project::Validate(*project);
        benchmark::DoNotOptimize(findings);
    }
}

BENCHMARK(Validate)->Arg(1)->Arg(10)->Arg(100)->Unit(benchmark::kMillisecond);

} // namespace
