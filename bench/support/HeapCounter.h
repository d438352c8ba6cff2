#pragma once

#include <cstddef>

namespace bench
{

// The program's own malloc stands in front of the C library's, so that whatever allocates is counted: the
// library itself, pugixml, Qt and the standard library. While nothing is being counted an allocation costs
// one test more.

/// Counts what all threads take from the heap during its life. One at a time.
class HeapCounter
{
public:
    HeapCounter();
    HeapCounter(const HeapCounter &) = delete;
    HeapCounter &operator=(const HeapCounter &) = delete;
    ~HeapCounter();

    std::size_t Allocations() const;
    /// The most bytes that were held at one time, beyond those held at the start.
    std::size_t PeakBytes() const;
};

} // namespace bench
