#include <marlet/platform/files/WholeFile.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/KyID.h>
#include <marlet/platform/files/FileDescriptor.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>

namespace marlet::project
{

namespace fs = std::filesystem;
using platform::FileDescriptor;
using platform::SystemFailure;

namespace
{

/// Keeps an endless file such as /dev/zero from taking all memory.
constexpr std::size_t kLargestFile = std::size_t(1) << 30;

/// Puts off what would end the process on this thread, so that no temporary file stays behind.
class SignalBlock
{
public:
    SignalBlock()
    {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
            sigaddset(&signals, signal);
        pthread_sigmask(SIG_BLOCK, &signals, &before_);
    }
    SignalBlock(const SignalBlock &) = delete;
    SignalBlock &operator=(const SignalBlock &) = delete;
    ~SignalBlock() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_;
};

/// A new file in a folder, which is removed again unless it is renamed.
class TemporaryFile
{
public:
    TemporaryFile(const std::string &target, const fs::path &folder)
        : target_(target),
          path_((folder / (".marlet-" + kytl::KyID::Generate().ToNarrowString() + ".tmp")).string())
    {
        file_.emplace(path_, O_WRONLY | O_CREAT | O_EXCL, 0666, target_);
    }
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile()
    {
        if (!path_.empty())
            ::unlink(path_.c_str());
    }

    void TakeOwnership(const struct stat &from)
    {
        // Only the superuser can give a file away, and the owner counts less than the content.
        [[maybe_unused]] const int ignored = ::fchown(file_->Get(), from.st_uid, from.st_gid);
        if (::fchmod(file_->Get(), from.st_mode & 07777) != 0)
            throw SystemFailure(target_, errno);
    }

    void Fill(std::string_view bytes)
    {
        file_->WriteAll(bytes);
        file_->Sync();
        file_->Close();
    }

    void RenameTo(const fs::path &place)
    {
        if (std::rename(path_.c_str(), place.c_str()) != 0)
            throw SystemFailure(target_, errno);
        path_.clear();
    }

private:
    std::string target_;
    std::string path_;
    std::optional<FileDescriptor> file_;
};

/// Where a file stands, or will stand, behind the symbolic links that lead to it.
fs::path FollowLinks(const std::string &path)
{
    constexpr int kMostLinks = 40;
    fs::path place = path;
    std::error_code error;
    for (int i = 0; i < kMostLinks && fs::is_symlink(place, error); ++i) {
        const fs::path target = fs::read_symlink(place, error);
        if (error)
            throw SystemFailure(path, error.value());
        place = place.parent_path() / target;
    }
    if (fs::is_symlink(place, error))
        throw SystemFailure(path, ELOOP);
    return place;
}

fs::path FolderOfPlace(const fs::path &place)
{
    return place.has_parent_path() ? place.parent_path() : fs::path(".");
}

void RequireAccess(const std::string &target, const fs::path &path, int mode)
{
    if (::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) != 0)
        throw SystemFailure(target, errno);
}

fs::path VersionOf(const fs::path &place, int number)
{
    return place.string() + ".~" + std::to_string(number) + "~";
}

bool IsThere(const fs::path &path)
{
    struct stat status {
    };
    return ::lstat(path.c_str(), &status) == 0;
}

/// A second name for the file, or a copy where the file system has no second names.
void Duplicate(const std::string &target, const fs::path &place, const struct stat &old, const fs::path &to)
{
    if (::link(place.c_str(), to.c_str()) == 0)
        return;
    TemporaryFile copy(target, FolderOfPlace(place));
    copy.TakeOwnership(old);
    copy.Fill(FileDescriptor(place.string(), O_RDONLY, 0, target).ReadAll(kLargestFile));
    copy.RenameTo(to);
}

/// Makes the content a version before it is replaced, so that there is a file at any moment. The oldest
/// goes when all places are taken; a gap ends the moving on.
void KeepVersion(const std::string &target, const fs::path &place, const struct stat &old, int versions)
{
    int free = 1;
    while (free < versions && IsThere(VersionOf(place, free)))
        ++free;
    for (int number = free; number > 1; --number)
        if (std::rename(VersionOf(place, number - 1).c_str(), VersionOf(place, number).c_str()) != 0)
            throw SystemFailure(target, errno);
    if (free == 1)
        ::unlink(VersionOf(place, 1).c_str());
    Duplicate(target, place, old, VersionOf(place, 1));
}

} // namespace

std::string ReadWholeFile(const std::string &path)
{
    return FileDescriptor(path, O_RDONLY).ReadAll(kLargestFile);
}

void RequireWritable(const std::string &path)
{
    struct stat old {
    };
    const bool exists = ::stat(path.c_str(), &old) == 0;
    if (exists && S_ISDIR(old.st_mode))
        throw SystemFailure(path, EISDIR);
    // Renaming asks for no permission on the file itself, but a file that is protected is meant to stay.
    if (exists)
        RequireAccess(path, path, W_OK);
    if (!exists || S_ISREG(old.st_mode)) {
        const fs::path folder = FolderOfPlace(FollowLinks(path));
        // Of a file in the place of a folder, the permissions say nothing of use.
        RequireAccess(path, folder / "", F_OK);
        RequireAccess(path, folder, W_OK | X_OK);
    }
}

void WriteWholeFile(const std::string &path, std::string_view bytes, int keptVersions)
{
    RequireWritable(path);
    struct stat old {
    };
    const bool exists = ::stat(path.c_str(), &old) == 0;
    if (exists && !S_ISREG(old.st_mode)) {
        FileDescriptor(path, O_WRONLY).WriteAll(bytes);
        return;
    }

    const SignalBlock block;
    const fs::path place = FollowLinks(path);
    const fs::path folder = FolderOfPlace(place);
    TemporaryFile file(path, folder);
    if (exists)
        file.TakeOwnership(old);
    file.Fill(bytes);
    if (exists && keptVersions > 0)
        KeepVersion(path, place, old, keptVersions);
    file.RenameTo(place);
    // A folder that one may write to but not list cannot be synced.
    if (::faccessat(AT_FDCWD, folder.c_str(), R_OK, AT_EACCESS) == 0)
        FileDescriptor(folder.string(), O_RDONLY | O_DIRECTORY, 0, path).Sync();
}

} // namespace marlet::project
