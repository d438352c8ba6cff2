#include "Failure.h"
#include "FileDescriptor.h"
#include "TextFile.h"

#include <marlet/foundation/KyID.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <optional>

namespace marlet::tool
{

namespace fs = std::filesystem;

namespace
{

/// Puts off what would end the process, so that no temporary file stays behind.
class SignalBlock
{
public:
    SignalBlock()
    {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT})
            sigaddset(&signals, signal);
        sigprocmask(SIG_BLOCK, &signals, &before_);
    }
    SignalBlock(const SignalBlock &) = delete;
    SignalBlock &operator=(const SignalBlock &) = delete;
    ~SignalBlock() { sigprocmask(SIG_SETMASK, &before_, nullptr); }

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
        try {
            file_.emplace(path_, O_WRONLY | O_CREAT | O_EXCL, 0666);
        } catch (const Failure &failure) {
            throw Failure(target_, failure.what());
        }
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
            throw Failure(target_, SystemMessage(errno));
    }

    void Fill(std::string_view bytes)
    {
        try {
            file_->WriteAll(bytes);
            file_->Sync();
            file_->Close();
        } catch (const Failure &failure) {
            throw Failure(target_, failure.what());
        }
    }

    void RenameTo(const fs::path &place)
    {
        if (std::rename(path_.c_str(), place.c_str()) != 0)
            throw Failure(target_, SystemMessage(errno));
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
            throw Failure(path, SystemMessage(error.value()));
        place = place.parent_path() / target;
    }
    if (fs::is_symlink(place, error))
        throw Failure(path, SystemMessage(ELOOP));
    return place;
}

fs::path FolderOfPlace(const fs::path &place)
{
    return place.has_parent_path() ? place.parent_path() : fs::path(".");
}

void RequireAccess(const std::string &target, const fs::path &path, int mode)
{
    if (::faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) != 0)
        throw Failure(target, SystemMessage(errno));
}

} // namespace

bool IsSameFile(const std::string &a, const std::string &b)
{
    struct stat first {
    };
    struct stat second {
    };
    return ::stat(a.c_str(), &first) == 0 && ::stat(b.c_str(), &second) == 0 && S_ISREG(first.st_mode) &&
           first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

void RequireWritable(const std::string &path)
{
    struct stat old {
    };
    const bool exists = ::stat(path.c_str(), &old) == 0;
    if (exists && S_ISDIR(old.st_mode))
        throw Failure(path, SystemMessage(EISDIR));
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

void WriteFile(const std::string &path, std::string_view bytes)
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
    file.RenameTo(place);
    // A folder that one may write to but not list cannot be synced.
    if (::faccessat(AT_FDCWD, folder.c_str(), R_OK, AT_EACCESS) == 0)
        FileDescriptor(folder.string(), O_RDONLY | O_DIRECTORY).Sync();
}

} // namespace marlet::tool
