#include <marlet/platform/media/files/FileSource.h>

#include <marlet/platform/media/MediaFailure.h>

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace kyh::media
{

namespace
{

FileIdentity CurrentIdentity(const OpenFile &file)
{
    struct stat status {
    };
    if (::fstat(file.Descriptor(), &status) != 0)
        throw MediaFailure{kFailed};
    if (!S_ISREG(status.st_mode))
        throw MediaFailure{kNotAFile};
    return IdentityOf(status);
}

/// An open file that is renamed or deleted keeps its content.
bool HasSameContent(const FileIdentity &first, const FileIdentity &second)
{
    return first.size == second.size && first.writtenAt == second.writtenAt;
}

std::int64_t ReadAt(int descriptor, std::int64_t position, unsigned char *bytes, std::size_t size)
{
    std::size_t done = 0;
    while (done < size) {
        const ssize_t part =
            ::pread(descriptor, bytes + done, size - done, position + static_cast<std::int64_t>(done));
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

} // namespace

FileSource::FileSource(std::string path, OpenFilesPtr files)
    : path_(std::move(path)), files_(std::move(files))
{
    const OpenFilePtr file = files_->Open(path_);
    file_ = file;
    try {
        identity_ = CurrentIdentity(*file);
    } catch (...) {
        Close();
        throw;
    }
}

void FileSource::Close()
{
    const std::lock_guard hold(lock_);
    files_->Close(file_);
    file_.reset();
}

void FileSource::Fail(int code) const
{
    state_ = code;
    throw MediaFailure{code};
}

OpenFilePtr FileSource::OpenAgain() const
{
    OpenFilePtr file = files_->Open(path_);
    if (CurrentIdentity(*file) == identity_)
        return file;
    files_->Close(file);
    throw MediaFailure{kDamaged};
}

OpenFilePtr FileSource::Use() const
{
    const std::lock_guard hold(lock_);
    OpenFilePtr file = files_->Find(file_);
    if (file)
        return file;
    try {
        file = OpenAgain();
    } catch (const MediaFailure &failure) {
        Fail(failure.code);
    }
    file_ = file;
    state_ = kSuccess;
    return file;
}

std::int64_t FileSource::Read(std::int64_t position, unsigned char *bytes, std::size_t size) const
{
    const OpenFilePtr file = Use();
    const std::int64_t count = ReadAt(file->Descriptor(), position, bytes, size);
    // Behind the reading, so that what was read is known to be of the file as it was.
    if (!HasSameContent(CurrentIdentity(*file), identity_))
        Fail(kDamaged);
    return count;
}

int FileSource::Look() const
{
    return CodeOf([this] { Use(); });
}

} // namespace kyh::media
