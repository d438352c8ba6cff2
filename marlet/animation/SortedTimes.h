#pragma once

#include <cstddef>

namespace marlet::project
{

/// The index of the last of count sorted times that is not after time. The first one must not be.
///
/// Halves the range without a branch: at times in no order a branch would be guessed wrong half of the time.
inline std::size_t LastNotAfter(const int *times, std::size_t count, int time)
{
    const int *base = times;
    while (count > 1) {
        const std::size_t half = count / 2;
        base += half * static_cast<std::size_t>(base[half] <= time);
        count -= half;
    }
    return static_cast<std::size_t>(base - times);
}

} // namespace marlet::project
