#include <marlet/platform/media/files/OpenFiles.h>

#include <marlet/platform/media/MediaFailure.h>

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

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

/// Opening a device can set something off, so it is not even tried.
void RequireRegular(const std::string &path)
{
    struct stat status {
    };
    if (::stat(path.c_str(), &status) != 0)
        FailBySystem(errno);
    if (!S_ISREG(status.st_mode))
        throw MediaFailure{kNotAFile};
}

/// The process needs most of its descriptors for other things.
int MostOpen()
{
    constexpr rlim_t kShare = 4;
    struct rlimit limit {
    };
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return OpenFiles::kMost;
    return static_cast<int>(std::clamp<rlim_t>(limit.rlim_cur / kShare, 1, OpenFiles::kMost));
}

std::int64_t Nanoseconds(const timespec &time)
{
    return std::int64_t{time.tv_sec} * 1'000'000'000 + time.tv_nsec;
}

} // namespace

FileIdentity IdentityOf(const struct stat &status)
{
    return {.device = status.st_dev,
            .inode = status.st_ino,
            .size = status.st_size,
            .writtenAt = Nanoseconds(status.st_mtim),
            .changedAt = Nanoseconds(status.st_ctim)};
}

OpenFile::~OpenFile()
{
    ::close(descriptor_);
    --count_;
}

/// False if all that are open are being read.
bool OpenFiles::CloseOne()
{
    const std::lock_guard hold(lock_);
    const auto idle = std::find_if(files_.begin(), files_.end(),
                                   [](const OpenFilePtr &file) { return file.use_count() == 1; });
    if (idle == files_.end())
        return false;
    files_.erase(idle);
    return true;
}

int OpenFiles::OpenDescriptor(const std::string &path)
{
    for (const int most = MostOpen(); count_ >= most && CloseOne();)
        continue;
    for (;;) {
        const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
        if (descriptor >= 0)
            return descriptor;
        const int error = errno;
        if ((error != EMFILE && error != ENFILE) || !CloseOne())
            FailBySystem(error);
    }
}

OpenFilePtr OpenFiles::Open(const std::string &path)
{
    RequireRegular(path);
    const auto file = std::make_shared<OpenFile>(OpenDescriptor(path), count_);
    const std::lock_guard hold(lock_);
    files_.push_back(file);
    return file;
}

OpenFilePtr OpenFiles::Find(const std::weak_ptr<OpenFile> &file)
{
    const std::lock_guard hold(lock_);
    const OpenFilePtr found = file.lock();
    const auto place = std::find(files_.begin(), files_.end(), found);
    if (place == files_.end())
        return nullptr;
    files_.splice(files_.end(), files_, place);
    return found;
}

void OpenFiles::Close(const std::weak_ptr<OpenFile> &file)
{
    const std::lock_guard hold(lock_);
    if (const OpenFilePtr found = file.lock())
        std::erase(files_, found);
}

} // namespace kyh::media
