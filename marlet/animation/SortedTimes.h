#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace marlet::project
{

/// The index of the last of some sorted times that is not after time. The first one must not be.
///
/// Most long lists have key frames at much the same distance, so the search begins where those would be and
/// doubles its steps from there. What is left is halved without a branch: at times in no order it would be
/// guessed wrong half of the time.
inline std::size_t LastNotAfter(const std::vector<int> &times, int time)
{
    const std::size_t last = times.size() - 1;
    if (time >= times[last])
        return last;
    const std::int64_t span = std::int64_t{times[last]} - times[0];
    const std::int64_t offset = std::int64_t{time} - times[0];
    auto low = static_cast<std::size_t>(offset * static_cast<std::int64_t>(last) / span);
    std::size_t count = 1;
    if (times[low] <= time) {
        while (low + count <= last && times[low + count] <= time) {
            low += count;
            count *= 2;
        }
        count = std::min(count, last - low);
    } else {
        while (low > count && times[low - count] > time) {
            low -= count;
            count *= 2;
        }
        count = std::min(count, low);
        low -= count;
    }
    const int *base = times.data() + low;
    while (count > 1) {
        const std::size_t half = count / 2;
        base = base[half] <= time ? base + half : base;
        count -= half;
    }
    return static_cast<std::size_t>(base - times.data());
}

} // namespace marlet::project
