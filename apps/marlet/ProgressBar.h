#pragma once

#include <chrono>
#include <string>

namespace marlet::tool
{

/// A line on standard error that tells how far the work is and how long it will take; on a terminal alone, so
/// that logs stay clean. It is rewritten in place, and gone when the bar goes.
class ProgressBar
{
public:
    /// The unit in the plural, such as "frames".
    ProgressBar(int total, std::string unit);
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;
    ~ProgressBar();

    void Show(int done, const std::string &remark = {});

private:
    using Clock = std::chrono::steady_clock;

    int total_;
    std::string unit_;
    bool isShown_;
    Clock::time_point start_ = Clock::now();
    Clock::time_point last_;
};

} // namespace marlet::tool
