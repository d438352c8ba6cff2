#include <marlet/platform/files/FileDescriptor.h>

#include <marlet/foundation/Exceptions.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace marlet::project::platform
{

FileException SystemFailure(const std::string &path, int error)
{
    return FileException(path, std::generic_category().message(error));
}

FileDescriptor::FileDescriptor(const std::string &path, int flags, unsigned int permissions,
                               const std::string &knownAs)
    : knownAs_(knownAs.empty() ? path : knownAs),
      descriptor_(::open(path.c_str(), flags | O_CLOEXEC, permissions))
{
    if (descriptor_ < 0)
        throw SystemFailure(knownAs_, errno);
}

FileDescriptor::~FileDescriptor()
{
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

std::string FileDescriptor::ReadAll(std::size_t most)
{
    struct stat status {
    };
    if (::fstat(descriptor_, &status) != 0)
        throw SystemFailure(knownAs_, errno);
    if (S_ISDIR(status.st_mode))
        throw SystemFailure(knownAs_, EISDIR);

    std::string bytes;
    std::size_t filled = 0;
    // The size of a regular file and one byte, so that the end is found without growing once more.
    bytes.resize(std::clamp<std::size_t>(static_cast<std::size_t>(status.st_size) + 1, 1 << 16, most));
    for (;;) {
        const ssize_t count = ::read(descriptor_, bytes.data() + filled, bytes.size() - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw SystemFailure(knownAs_, errno);
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
        if (filled == most)
            throw SystemFailure(knownAs_, EFBIG);
        if (filled == bytes.size())
            bytes.resize(std::min(2 * bytes.size(), most));
    }
    bytes.resize(filled);
    return bytes;
}

void FileDescriptor::WriteAll(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw SystemFailure(knownAs_, errno);
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void FileDescriptor::Sync()
{
    // Some file systems cannot sync a folder, and say so with EINVAL: there is nothing to do about it.
    if (::fsync(descriptor_) != 0 && errno != EINVAL)
        throw SystemFailure(knownAs_, errno);
}

void FileDescriptor::Close()
{
    const int result = ::close(descriptor_);
    descriptor_ = -1;
    if (result != 0)
        throw SystemFailure(knownAs_, errno);
}

} // namespace marlet::project::platform
