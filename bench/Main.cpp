// Runs the benchmarks and prints the figures that the library is to reach, each a ratio within this one run.

#include <bench/support/Machine.h>
#include <bench/support/MediaInProcess.h>
#include <bench/support/PeakOfLoad.h>
#include <bench/support/Report.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include <malloc.h>

namespace
{

/// What is measured in a process of its own.
struct InProcess {
    const char *argument;
    int (*run)(const char *file);
};

constexpr InProcess kInProcess[] = {{bench::kPeakOfLoadArgument, bench::RunPeakOfLoad},
                                    {bench::kOpeningArgument, bench::RunOpening},
                                    {bench::kRandomReadingArgument, bench::RunRandomReading}};

/// Lets the heap keep what is freed. Otherwise it would give memory back between rounds, and what is timed
/// would be in part the kernel, clearing the same pages again for every round.
void KeepHeapWarm()
{
    // Large blocks come out of the heap as well, and the heap never shrinks and grows in large steps.
    const bool isKept = mallopt(M_MMAP_MAX, 0) != 0 && mallopt(M_TRIM_THRESHOLD, -1) != 0 &&
                        mallopt(M_TOP_PAD, 64 << 20) != 0;
    if (!isKept)
        std::fprintf(stderr, "The heap gives memory back between rounds\n");
}

} // namespace

int main(int argc, char **argv)
{
    // With the heap as a host has it.
    for (const InProcess &measure : kInProcess)
        if (argc == 3 && std::strcmp(argv[1], measure.argument) == 0)
            return measure.run(argv[2]);

    KeepHeapWarm();
    // The least of three rounds, far apart from one another, counts. What the caller says stands behind and
    // overrules.
    std::vector<char *> arguments(argv, argv + argc);
    char repetitions[] = "--benchmark_repetitions=3";
    char interleaving[] = "--benchmark_enable_random_interleaving=true";
    arguments.insert(arguments.begin() + 1, {repetitions, interleaving});
    argc = static_cast<int>(arguments.size());
    argv = arguments.data();
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    std::printf("%s\n", bench::MachineText().c_str());
    std::fflush(stdout);

    bench::Report report;
    benchmark::RunSpecifiedBenchmarks(&report);
    report.PrintTable();
    return report.AnyError() ? 1 : 0;
}
