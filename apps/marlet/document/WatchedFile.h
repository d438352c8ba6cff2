#pragma once

#include <chrono>
#include <optional>
#include <string>

#include <sys/stat.h>

namespace marlet::tool
{

/// Tells when a file has changed, by its times, its size and which file it is: so a new file that takes the
/// place of the old one counts. A file that is being written counts when it has been quiet for a while; one
/// that is away for a moment, not until it is back.
class WatchedFile
{
public:
    using Duration = std::chrono::milliseconds;

    /// What is there now is what changes count from. @throws Failure if there is no file
    explicit WatchedFile(std::string path, Duration quiet = Duration(200));

    /// Looks at the file. Whether it is another one than when this last said so, or at the beginning.
    bool HasChanged();

private:
    struct Look {
        dev_t device;
        ino_t file;
        off_t size;
        timespec written;
        timespec changed;

        bool operator==(const Look &other) const;
    };

    std::optional<Look> Now() const;

    std::string path_;
    Duration quiet_;
    std::optional<Look> told_;
    std::optional<Look> seen_;
    std::chrono::steady_clock::time_point since_;
};

} // namespace marlet::tool
