#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace marlet::project
{
class FileException;
}

namespace marlet::project::platform
{

/// Owns an open file of the operating system. Failures name the path that a caller knows it by.
class FileDescriptor
{
public:
    /// @param path of the file, and the one that failures name if that is another. @throws FileException
    FileDescriptor(const std::string &path, int flags, unsigned int permissions = 0,
                   const std::string &knownAs = {});
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor();

    int Get() const { return descriptor_; }
    /// Reads to the end. @throws FileException, also for a folder and for what takes more bytes than `most`
    std::string ReadAll(std::size_t most);
    /// @throws FileException
    void WriteAll(std::string_view bytes);
    /// @throws FileException
    void Sync();
    /// Some file systems report a failed write only here. @throws FileException
    void Close();

private:
    std::string knownAs_;
    int descriptor_;
};

/// The failure that an error number of the operating system tells of.
FileException SystemFailure(const std::string &path, int error);

} // namespace marlet::project::platform
