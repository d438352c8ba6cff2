#include "ProgressBar.h"

#include "Output.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace marlet::tool
{

namespace
{

constexpr char kClearLine[] = "\r\033[K";
constexpr std::chrono::milliseconds kLeastPause(100);

std::string OneDecimal(double number)
{
    char buffer[32];
    std::snprintf(buffer, sizeof buffer, "%.1f", number);
    return buffer;
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
    : total_(std::max(total, 1)), unit_(std::move(unit)), isShown_(isatty(STDERR_FILENO) == 1)
{
}

ProgressBar::~ProgressBar()
{
    if (isShown_)
        std::fputs(kClearLine, stderr);
}

void ProgressBar::Show(int done, const std::string &remark)
{
    constexpr int kWidth = 24;
    const Clock::time_point now = Clock::now();
    if (!isShown_ || (done < total_ && now - last_ < kLeastPause))
        return;
    last_ = now;
    const int filled =
        static_cast<int>(static_cast<long long>(kWidth) * std::clamp(done, 0, total_) / total_);
    std::string line = kClearLine + std::string("[") + std::string(static_cast<std::size_t>(filled), '#') +
                       std::string(static_cast<std::size_t>(kWidth - filled), ' ') + "] " +
                       std::to_string(done) + " of " + std::to_string(total_) + " " + unit_;
    const double seconds = std::chrono::duration<double>(now - start_).count();
    if (done > 0 && seconds > 0) {
        const double rate = done / seconds;
        line +=
            ", " + OneDecimal(rate) + " a second, " + TimeText(std::max(total_ - done, 0) / rate) + " left";
    }
    if (!remark.empty())
        line += ", " + OneLine(remark);
    std::fputs(line.c_str(), stderr);
}

} // namespace marlet::tool
