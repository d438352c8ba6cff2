#pragma once

#include <string>

namespace bench
{

/// Processor, cores, memory and compiler, in one line.
std::string MachineText();

/// A size in kilobytes from /proc/self/status, such as "VmRSS".
long StatusKilobytes(const char *field);

} // namespace bench
