#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace marlet::project
{

/// As many frames as samples are taken of: some hours. Files may say any length.
inline constexpr int kMostSamples = 1 << 21;

/// A number that no text of the other side may hold counts as 0.
inline double FiniteSample(double number)
{
    return std::isfinite(number) ? number : 0;
}

/// Some numbers for each frame, from some first one on.
template <std::size_t N> using FrameSamples = std::vector<std::array<double, N>>;

/// Which of the samples suffice if straight lines run between them: the numbers stay within the tolerance at
/// each frame. The first and the last are among them, or the first alone where nothing ever changes.
template <std::size_t N>
std::vector<std::size_t> SamplesOfStraightLines(const FrameSamples<N> &samples, double tolerance)
{
    // The last frame to which a line passes all between: the slopes that it may have get fewer with each.
    // Where no line has ended for so long, looking further would take longer than what it saves.
    constexpr std::size_t kFarthest = 1000;
    const auto endOfLine = [&](std::size_t first) {
        std::array<double, N> least;
        std::array<double, N> most;
        least.fill(-std::numeric_limits<double>::infinity());
        most.fill(std::numeric_limits<double>::infinity());
        std::size_t end = first + 1;
        for (std::size_t at = first + 1; at < samples.size(); ++at) {
            const auto steps = static_cast<double>(at - first);
            bool passesAll = true;
            for (std::size_t i = 0; i < N; ++i) {
                const double rise = samples[at][i] - samples[first][i];
                passesAll = passesAll && rise / steps >= least[i] && rise / steps <= most[i];
                least[i] = std::max(least[i], (rise - tolerance) / steps);
                most[i] = std::min(most[i], (rise + tolerance) / steps);
                if (least[i] > most[i])
                    return end;
            }
            if (passesAll)
                end = at;
            if (at - end > kFarthest)
                return end;
        }
        return end;
    };
    const bool isSteady =
        std::ranges::all_of(samples, [&](const auto &sample) { return sample == samples.front(); });
    if (isSteady)
        return {0};
    std::vector<std::size_t> kept;
    for (std::size_t at = 0; at < samples.size(); at = endOfLine(at))
        kept.push_back(at);
    return kept;
}

} // namespace marlet::project
