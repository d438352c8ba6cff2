#pragma once

#include <marlet/platform/media/files/OpenFiles.h>

#include <cstdint>
#include <memory>
#include <mutex>
#include <string>

namespace kyh::media
{

/// A regular file, as it was when it was opened first, for reading at any place by any thread. It is open
/// while it is read and as long as there is room for it among the open files. What another file has in its
/// place is never read.
class FileSource
{
public:
    /// Without others that are open, the file does not count.
    /// @throws MediaFailure
    explicit FileSource(std::string path, OpenFilesPtr files = std::make_shared<OpenFiles>());
    FileSource(const FileSource &) = delete;
    FileSource &operator=(const FileSource &) = delete;
    ~FileSource() { Close(); }

    const std::string &Path() const { return path_; }
    const FileIdentity &Identity() const { return identity_; }
    std::int64_t Size() const { return identity_.size; } ///< bytes
    /// As many bytes as there are, up to `size`; below 0 if reading fails.
    /// @throws MediaFailure if the file is not there any more, or no longer what it was
    std::int64_t Read(std::int64_t position, unsigned char *bytes, std::size_t size) const;
    /// Closes the file, which waits for nobody. It is opened again when it is read.
    void Close();
    /// Whether the file is there, and what it was: 0, or the code that reading fails with, as the last try
    /// has shown.
    int State() const { return state_; }
    /// Looks whether reading would go well. The same answers as those of State.
    int Look() const;

private:
    OpenFilePtr Use() const;
    OpenFilePtr OpenAgain() const;
    [[noreturn]] void Fail(int code) const;

    std::string path_;
    OpenFilesPtr files_;
    FileIdentity identity_;
    mutable std::atomic<int> state_ = 0;
    mutable std::mutex lock_; ///< of what follows
    mutable std::weak_ptr<OpenFile> file_;
};

using FileSourcePtr = std::shared_ptr<FileSource>;

} // namespace kyh::media
