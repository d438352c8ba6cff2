#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>

namespace bench
{

/// Collects what the benchmarks measure, one line of progress each, and prints the figures beside their
/// targets.
class Report : public benchmark::BenchmarkReporter
{
public:
    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override;

    void PrintTable() const;
    bool AnyError() const { return anyError_; }

private:
    /// Nanoseconds by name, the least of all repetitions, and counters by name, ":" and their own name.
    std::map<std::string, double> measured_;
    bool anyError_ = false;
};

} // namespace bench
