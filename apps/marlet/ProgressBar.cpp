#include "ProgressBar.h"

#include "Output.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <cstdio>

namespace marlet::tool
{

namespace
{

void Print(const std::string &text)
{
    std::fwrite(text.data(), 1, text.size(), stderr);
}

std::string OneDecimal(double number)
{
    char buffer[64];
    const auto result = std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed, 1);
    return std::string(buffer, result.ptr);
}

} // namespace

ProgressBar::ProgressBar(int frameCount)
    : isTerminal_(::isatty(STDERR_FILENO) == 1),
      frameCount_(std::max(1, frameCount)),
      start_(std::chrono::steady_clock::now())
{
}

ProgressBar::~ProgressBar()
{
    if (isVisible_)
        Print("\n");
}

void ProgressBar::Show(int framesDone)
{
    framesDone_ = framesDone;
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

void ProgressBar::Draw()
{
    constexpr int kWidth = 30;
    if (!isTerminal_)
        return;
    const auto filled = static_cast<std::size_t>(static_cast<long long>(kWidth) *
                                                 std::min(framesDone_, frameCount_) / frameCount_);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start_).count();
    Hide();
    Print("[" + PadRight(std::string(filled, '#'), kWidth) + "] " + std::to_string(framesDone_) + " of " +
          std::to_string(frameCount_) + " frames, " + OneDecimal(seconds > 0 ? framesDone_ / seconds : 0) +
          " a second" + (message_.empty() ? "" : ", " + message_));
    isVisible_ = true;
}

} // namespace marlet::tool
