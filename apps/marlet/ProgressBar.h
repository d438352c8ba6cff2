#pragma once

#include <chrono>
#include <string>

namespace marlet::tool
{

/// One line on standard error that shows how far some work on frames is; nothing at all if that is no
/// terminal.
class ProgressBar
{
public:
    explicit ProgressBar(int frameCount);
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;
    /// Leaves the line as it is and goes to the next one.
    ~ProgressBar();

    void Show(int framesDone);
    /// Puts a message behind the numbers.
    void Tell(const std::string &message);
    /// Makes room for other output; the next Show brings the line back.
    void Hide();

private:
    void Draw();

    bool isTerminal_;
    int frameCount_;
    int framesDone_ = 0;
    bool isVisible_ = false;
    std::string message_;
    std::chrono::steady_clock::time_point start_;
};

} // namespace marlet::tool
