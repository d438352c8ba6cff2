#include "FileDescriptor.h"

#include "Failure.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace marlet::tool
{

FileDescriptor::FileDescriptor(const std::string &path, int flags, unsigned int permissions)
    : path_(path), descriptor_(::open(path.c_str(), flags | O_CLOEXEC, permissions))
{
    if (descriptor_ < 0)
        throw Failure(path_, SystemMessage(errno));
}

FileDescriptor::~FileDescriptor()
{
    if (descriptor_ >= 0)
        ::close(descriptor_);
}

void FileDescriptor::WriteAll(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            throw Failure(path_, SystemMessage(errno));
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
}

void FileDescriptor::Sync()
{
    // Some file systems cannot sync a folder, and say so with EINVAL: there is nothing to do about it.
    if (::fsync(descriptor_) != 0 && errno != EINVAL)
        throw Failure(path_, SystemMessage(errno));
}

void FileDescriptor::Close()
{
    const int result = ::close(descriptor_);
    descriptor_ = -1;
    if (result != 0)
        throw Failure(path_, SystemMessage(errno));
}

} // namespace marlet::tool
