#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <stdexcept>

namespace marlet::project
{

class Stopwatch
{
public:
    void Start() { start_ = Clock::now(); }
    /// Whole milliseconds. @throws std::runtime_error if it was never started
    std::int64_t ElapsedMilliseconds() const
    {
        if (!start_)
            throw std::runtime_error("Timer has not been started");
        return std::chrono::duration_cast<std::chrono::milliseconds>(Clock::now() - *start_).count();
    }

private:
    using Clock = std::chrono::steady_clock;

    std::optional<Clock::time_point> start_;
};

} // namespace marlet::project
