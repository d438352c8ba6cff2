#include "WatchedFile.h"

#include "output/Failure.h"

#include <cerrno>
#include <system_error>
#include <utility>

namespace marlet::tool
{

namespace
{

bool IsSame(const timespec &a, const timespec &b)
{
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

} // namespace

bool WatchedFile::Look::operator==(const Look &other) const
{
    return device == other.device && file == other.file && size == other.size &&
           IsSame(written, other.written) && IsSame(changed, other.changed);
}

WatchedFile::WatchedFile(std::string path, Duration quiet) : path_(std::move(path)), quiet_(quiet)
{
    told_ = seen_ = Now();
    if (!told_)
        throw Failure(path_, std::generic_category().message(errno));
}

std::optional<WatchedFile::Look> WatchedFile::Now() const
{
    struct stat now {
    };
    if (::stat(path_.c_str(), &now) != 0)
        return std::nullopt;
    return Look{now.st_dev, now.st_ino, now.st_size, now.st_mtim, now.st_ctim};
}

bool WatchedFile::HasChanged()
{
    const std::optional<Look> now = Now();
    if (now != seen_) {
        seen_ = now;
        since_ = std::chrono::steady_clock::now();
    }
    if (!now || now == told_ || std::chrono::steady_clock::now() - since_ < quiet_)
        return false;
    told_ = now;
    return true;
}

} // namespace marlet::tool
