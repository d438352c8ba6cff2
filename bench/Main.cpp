// Runs the benchmarks and prints the figures that the library is to reach, each a ratio within this one run.

#include <bench/support/Machine.h>
#include <bench/support/PeakOfLoad.h>
#include <bench/support/Report.h>

#include <cstdio>
#include <cstring>
#include <malloc.h>
#include <vector>

namespace
{

/// Keeps what is freed, so that rounds of any size find the heap warm. Otherwise small documents would find
/// it so, and large ones, whose largest blocks go back to the system after each round, would not.
void KeepHeapWarm()
{
    mallopt(M_MMAP_MAX, 0);
    mallopt(M_TRIM_THRESHOLD, -1);
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 3 && std::strcmp(argv[1], bench::kPeakOfLoadArgument) == 0)
        return bench::RunPeakOfLoad(argv[2]);

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
