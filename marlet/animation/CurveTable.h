#pragma once

#include <cstdint>
#include <new>

namespace marlet::project
{

/// What is worked out once for a curve piece and never changed: many threads may read it without a lock. It
/// keeps what it was built from and counts only as long as that is how the key frames stand.
class CurveTable
{
public:
    virtual ~CurveTable() = default;

    /// A table may be followed by its entries in the same piece of memory, so its size is not the class's.
    static void operator delete(void *memory) { ::operator delete(memory); }

    /// The place of the table in the order in which its list built tables.
    std::uint64_t built = 0;
};

} // namespace marlet::project
