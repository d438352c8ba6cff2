#pragma once

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <string>

namespace kyh::media
{

/// A regular file that is open for reading, at any place by any thread. Nobody may be reading while it is
/// closed and opened again.
class FileSource
{
public:
    /// Never waits, as opening a pipe would.
    /// @throws MediaFailure
    explicit FileSource(std::string path);
    FileSource(const FileSource &) = delete;
    FileSource &operator=(const FileSource &) = delete;
    ~FileSource();

    const std::string &Path() const { return path_; }
    /// Bytes, as of now; below 0 if that cannot be told.
    std::int64_t Size() const;
    /// As many bytes as there are, up to `size`; below 0 if reading fails.
    std::int64_t Read(std::int64_t position, unsigned char *bytes, std::size_t size) const;
    void Close();
    /// Opens a closed file again, if it is still the same as far as its dates say; false if not.
    /// @throws MediaFailure
    bool Reopen();

private:
    void Open();

    std::string path_;
    int descriptor_ = -1;
    struct stat opened_ {
    };
};

using FileSourcePtr = std::shared_ptr<FileSource>;

} // namespace kyh::media
