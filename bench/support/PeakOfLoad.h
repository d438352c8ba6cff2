#pragma once

#include <string>

namespace bench
{

/// What a load takes at its peak, beside the text handed in, in bytes per byte of UTF-8 text.
struct PeakOfLoad {
    double heap = 0;     ///< by the sizes of the blocks that were held at one time
    double resident = 0; ///< by the growth of the process, with all that the heap wastes
};

/// Measures a load in a process of its own, whose heap is cold: nothing that was freed before hides a page
/// that the load needs.
PeakOfLoad MeasurePeakOfLoad(int megabytes);

/// What that process does: loads a file of UTF-16 and prints the figures. Returns its exit status.
int RunPeakOfLoad(const char *file);

/// The argument that asks a process for it.
constexpr const char kPeakOfLoadArgument[] = "--peak-of-load";

} // namespace bench
