#include <bench/support/Machine.h>

#include <cstdlib>
#include <fstream>
#include <thread>

namespace bench
{

namespace
{

/// What stands behind "field:" in a file of /proc, or nothing.
std::string ProcField(const char *file, const std::string &field)
{
    std::ifstream lines(file);
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, field.size(), field) != 0)
            continue;
        const std::size_t value = line.find_first_not_of(" \t:", field.size());
        return value == std::string::npos ? std::string() : line.substr(value);
    }
    return {};
}

} // namespace

std::string MachineText()
{
#ifdef __clang__
    const std::string compiler = __VERSION__;
#else
    const std::string compiler = "g++ " __VERSION__;
#endif
    const long kilobytes = std::atol(ProcField("/proc/meminfo", "MemTotal").c_str());
    return ProcField("/proc/cpuinfo", "model name") + ", " +
           std::to_string(std::thread::hardware_concurrency()) + " cores, " +
           std::to_string((kilobytes + (1 << 19)) >> 20) + " GiB, " + compiler;
}

long StatusKilobytes(const char *field)
{
    return std::atol(ProcField("/proc/self/status", field).c_str());
}

} // namespace bench
