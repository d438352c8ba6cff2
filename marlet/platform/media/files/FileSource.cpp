#include <marlet/platform/media/files/FileSource.h>

#include <marlet/platform/media/MediaFailure.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <utility>

namespace kyh::media
{

namespace
{

[[noreturn]] void FailBySystem(int error)
{
    switch (error) {
    case ENOENT:
    case ENOTDIR:
    case ENAMETOOLONG:
    case ELOOP:
        throw MediaFailure{kNotFound};
    case EACCES:
    case EPERM:
        throw MediaFailure{kNoPermission};
    default:
        throw MediaFailure{kFailed};
    }
}

struct stat StatusOf(const std::string &path)
{
    struct stat status {
    };
    if (::stat(path.c_str(), &status) != 0)
        FailBySystem(errno);
    return status;
}

bool IsSameTime(const timespec &first, const timespec &second)
{
    return first.tv_sec == second.tv_sec && first.tv_nsec == second.tv_nsec;
}

bool IsSameFile(const struct stat &first, const struct stat &second)
{
    return first.st_dev == second.st_dev && first.st_ino == second.st_ino &&
           first.st_size == second.st_size && IsSameTime(first.st_mtim, second.st_mtim) &&
           IsSameTime(first.st_ctim, second.st_ctim);
}

} // namespace

FileSource::FileSource(std::string path) : path_(std::move(path))
{
    Open();
}

FileSource::~FileSource()
{
    Close();
}

void FileSource::Close()
{
    if (descriptor_ >= 0)
        ::close(descriptor_);
    descriptor_ = -1;
}

void FileSource::Open()
{
    // Opening a device can set something off, so it is not even tried.
    if (!S_ISREG(StatusOf(path_).st_mode))
        throw MediaFailure{kNotAFile};
    descriptor_ = ::open(path_.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor_ < 0)
        FailBySystem(errno);
    if (::fstat(descriptor_, &opened_) != 0 || !S_ISREG(opened_.st_mode)) {
        Close();
        throw MediaFailure{kNotAFile};
    }
}

bool FileSource::Reopen()
{
    const struct stat before = opened_;
    Open();
    if (IsSameFile(before, opened_))
        return true;
    Close();
    opened_ = before;
    return false;
}

std::int64_t FileSource::Size() const
{
    struct stat status {
    };
    return ::fstat(descriptor_, &status) == 0 ? status.st_size : -1;
}

std::int64_t FileSource::Read(std::int64_t position, unsigned char *bytes, std::size_t size) const
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t part =
            ::pread(descriptor_, bytes + done, size - done, position + static_cast<std::int64_t>(done));
        if (part < 0 && errno == EINTR)
            continue;
        if (part < 0 && done == 0)
            return -1;
        if (part <= 0)
            break;
        done += static_cast<std::size_t>(part);
    }
    return static_cast<std::int64_t>(done);
}

} // namespace kyh::media
