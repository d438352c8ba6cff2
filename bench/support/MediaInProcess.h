#pragma once

#include <string>
#include <vector>

namespace bench
{

/// What opening many clips takes, in a process of its own.
struct OpenedClips {
    double seconds = 0;
    double megabytes = 0; ///< by which the process has grown, all clips being open
    double threads = 0;   ///< that there are more then
};
OpenedClips MeasureOpening(const std::vector<std::string> &clips);

/// By how many megabytes such a process grows at most while it reads frames of clips at random.
double MeasureRandomReading(const std::vector<std::string> &clips);

// What these processes do with a file that lists the clips. They return their exit status.
int RunOpening(const char *list);
int RunRandomReading(const char *list);

constexpr const char kOpeningArgument[] = "--opening";
constexpr const char kRandomReadingArgument[] = "--random-reading";

} // namespace bench
