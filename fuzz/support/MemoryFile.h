#pragma once

#include "FuzzInput.h"

#include <marlet/foundation/Strings.h>

#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace marlet::project
{

/// A file of the operating system without a name in any folder.
class MemoryFile
{
public:
    MemoryFile() : descriptor_(::memfd_create("fuzz", MFD_CLOEXEC)) {}
    MemoryFile(const MemoryFile &) = delete;
    MemoryFile &operator=(const MemoryFile &) = delete;
    ~MemoryFile() { ::close(descriptor_); }

    void Fill(const std::string &bytes)
    {
        const auto size = static_cast<ssize_t>(bytes.size());
        if (::ftruncate(descriptor_, 0) != 0 || ::pwrite(descriptor_, bytes.data(), bytes.size(), 0) != size)
            Fail("the input cannot be written");
    }

    WideString Path() const { return FromUtf8("/proc/self/fd/" + std::to_string(descriptor_)); }

private:
    int descriptor_;
};

/// A file of the input. The last byte says what the others are: 0, in steps of one more than the whole files,
/// a file themselves; else changes to one of those, as two bytes for the place and one to put there.
template <class Files>
std::string FileOfInput(const std::uint8_t *bytes, std::size_t size, const Files &wholeFiles)
{
    const std::size_t choices = std::size(wholeFiles) + 1;
    if (size == 0 || bytes[size - 1] % choices == 0)
        return {reinterpret_cast<const char *>(bytes), size};
    std::string file = wholeFiles[bytes[size - 1] % choices - 1];
    for (std::size_t i = 0; i + 3 < size; i += 3)
        file[(bytes[i] | bytes[i + 1] << 8) % file.size()] = static_cast<char>(bytes[i + 2]);
    return file;
}

} // namespace marlet::project
