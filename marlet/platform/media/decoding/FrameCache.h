#pragma once

#include <atomic>
#include <cstddef>

namespace kyh::media
{

/// Keeps what was decoded within a budget of memory.
class FrameCache
{
public:
    static constexpr std::size_t kUsualBudget = std::size_t{256} << 20;

    /// Bytes. 0 keeps nothing.
    std::size_t Budget() const { return budget_; }
    void SetBudget(std::size_t bytes) { budget_ = bytes; }

private:
    std::atomic<std::size_t> budget_ = kUsualBudget;
};

} // namespace kyh::media
