#pragma once

#include <string>
#include <string_view>

namespace marlet::tool
{

/// Owns an open file of the operating system. Failures have the given path as their subject.
class FileDescriptor
{
public:
    /// @throws Failure
    FileDescriptor(const std::string &path, int flags, unsigned int permissions = 0);
    FileDescriptor(const FileDescriptor &) = delete;
    FileDescriptor &operator=(const FileDescriptor &) = delete;
    ~FileDescriptor();

    int Get() const { return descriptor_; }
    /// @throws Failure
    void WriteAll(std::string_view bytes);
    /// @throws Failure
    void Sync();
    /// Some file systems report a failed write only here. @throws Failure
    void Close();

private:
    std::string path_;
    int descriptor_;
};

} // namespace marlet::tool
