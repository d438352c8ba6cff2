#pragma once

#include <chrono>
#include <string>

namespace marlet::tool
{

/// One line on standard error that shows how far some work is and how long the rest will take; nothing at all
/// if that is no terminal.
class ProgressBar
{
public:
    /// What is counted, in the plural.
    explicit ProgressBar(int total, std::string unit = "frames");
    ProgressBar(const ProgressBar &) = delete;
    ProgressBar &operator=(const ProgressBar &) = delete;
    /// Leaves the line as it is and goes to the next one.
    ~ProgressBar();

    void Show(int done);
    /// Puts a message behind the numbers.
    void Tell(const std::string &message);
    /// Makes room for other output; the next Show brings the line back.
    void Hide();

private:
    void Draw();

    void Print(const std::string &text) const;

    int terminal_; ///< a descriptor of its own, or -1: what silences standard error does not silence the bar
    int total_;
    std::string unit_;
    int done_ = 0;
    bool isVisible_ = false;
    std::string message_;
    std::chrono::steady_clock::time_point start_;
};

} // namespace marlet::tool
