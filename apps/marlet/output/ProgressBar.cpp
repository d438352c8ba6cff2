#include "ProgressBar.h"

#include "Output.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdio>
#include <utility>

namespace marlet::tool
{

namespace
{

std::string OneDecimal(double number)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed, 1);
    return std::string(buffer, result.ptr);
}

std::string TimeText(double seconds)
{
    const auto whole = static_cast<long long>(std::ceil(seconds));
    if (whole < 60)
        return std::to_string(whole) + " s";
    return std::to_string(whole / 60) + " min " + std::to_string(whole % 60) + " s";
}

} // namespace

ProgressBar::ProgressBar(int total, std::string unit)
    : terminal_(::isatty(STDERR_FILENO) == 1 ? ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0) : -1),
      total_(std::max(1, total)),
      unit_(std::move(unit)),
      start_(std::chrono::steady_clock::now())
{
}

ProgressBar::~ProgressBar()
{
    if (isVisible_)
        Print("\n");
    if (terminal_ >= 0)
        ::close(terminal_);
}

void ProgressBar::Show(int done)
{
    done_ = done;
    Draw();
}

void ProgressBar::Tell(const std::string &message)
{
    message_ = message;
    Draw();
}

void ProgressBar::Hide()
{
    if (isVisible_)
        Print("\r\x1B[K");
    isVisible_ = false;
}

void ProgressBar::Print(const std::string &text) const
{
    ::dprintf(terminal_, "%s", text.c_str());
}

void ProgressBar::Draw()
{
    constexpr int kWidth = 30;
    if (terminal_ < 0)
        return;
    const auto filled =
        static_cast<std::size_t>(static_cast<long long>(kWidth) * std::min(done_, total_) / total_);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    const double rate = seconds > 0 ? done_ / seconds : 0;
    std::string line = "[" + PadRight(std::string(filled, '#'), kWidth) + "] " + std::to_string(done_) +
                       " of " + std::to_string(total_) + " " + unit_ + ", " + OneDecimal(rate) + " a second";
    if (rate > 0 && done_ < total_)
        line += ", " + TimeText((total_ - done_) / rate) + " left";
    if (!message_.empty())
        line += ", " + message_;
    Hide();
    Print(line);
    isVisible_ = true;
}

} // namespace marlet::tool
