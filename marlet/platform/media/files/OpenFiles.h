#pragma once

#include <sys/stat.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <string>

namespace kyh::media
{

/// By what a file is known again. A file with another content has another, as far as its dates say.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t writtenAt = 0; ///< nanoseconds
    std::int64_t changedAt = 0; ///< with the names and the permissions that it has

    bool operator==(const FileIdentity &) const = default;
};

FileIdentity IdentityOf(const struct stat &status);

/// An open file, which is closed with its last holder.
class OpenFile
{
public:
    OpenFile(int descriptor, std::atomic<int> &count) : descriptor_(descriptor), count_(count) { ++count_; }
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    ~OpenFile();

    int Descriptor() const { return descriptor_; }

private:
    int descriptor_;
    std::atomic<int> &count_;
};

using OpenFilePtr = std::shared_ptr<OpenFile>;

/// Bounds how many files are open at once. The files that were read last stay open, until room is needed.
/// There are more only while as many threads are reading at the same moment. Must outlive the files that it
/// opened.
class OpenFiles
{
public:
    /// Also where the process may open more.
    static constexpr int kMost = 64;

    /// Opens a regular file. Never waits, as opening a pipe would. @throws MediaFailure
    OpenFilePtr Open(const std::string &path);
    /// The file, which was read last from now on, or null if it was closed since.
    OpenFilePtr Find(const std::weak_ptr<OpenFile> &file);
    /// Lets go of a file.
    void Close(const std::weak_ptr<OpenFile> &file);
    /// Files that are open.
    int Count() const { return count_; }

private:
    bool CloseOne();
    int OpenDescriptor(const std::string &path);

    std::atomic<int> count_ = 0;
    std::mutex lock_;              ///< of what follows
    std::list<OpenFilePtr> files_; ///< by when they were read, the least recent first
};

using OpenFilesPtr = std::shared_ptr<OpenFiles>;

} // namespace kyh::media
