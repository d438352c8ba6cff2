#include "Failure.h"
#include "FileDescriptor.h"
#include "TextFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace marlet::tool
{

using project::WideString;

namespace
{

/// Keeps an endless file such as /dev/zero from taking all memory.
constexpr std::size_t kLargestFile = std::size_t(1) << 30;

std::string ReadBytes(const std::string &path)
{
    FileDescriptor file(path, O_RDONLY);
    struct stat status {
    };
    if (::fstat(file.Get(), &status) != 0)
        throw Failure(path, SystemMessage(errno));
    if (S_ISDIR(status.st_mode))
        throw Failure(path, SystemMessage(EISDIR));

    std::string bytes;
    std::size_t filled = 0;
    // The size of a regular file and one byte, so that the end is found without growing once more.
    bytes.resize(
        std::clamp<std::size_t>(static_cast<std::size_t>(status.st_size) + 1, 1 << 16, kLargestFile));
    for (;;) {
        const ssize_t count = ::read(file.Get(), bytes.data() + filled, bytes.size() - filled);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            throw Failure(path, SystemMessage(errno));
        if (count == 0)
            break;
        filled += static_cast<std::size_t>(count);
        if (filled == kLargestFile)
            throw Failure(path, SystemMessage(EFBIG));
        if (filled == bytes.size())
            bytes.resize(std::min(2 * bytes.size(), kLargestFile));
    }
    bytes.resize(filled);
    return bytes;
}

WideString DecodeUtf16(const std::string &path, std::string_view bytes, bool bigEndian)
{
    if (bytes.size() % 2 != 0)
        throw Failure(path, "The text is cut off in the middle of a character");
    WideString text(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto first = static_cast<unsigned char>(bytes[2 * i]);
        const auto second = static_cast<unsigned char>(bytes[2 * i + 1]);
        text[i] = static_cast<char16_t>(bigEndian ? first << 8 | second : second << 8 | first);
    }
    return text;
}

/// Malformed bytes are refused: they would come out as other characters, and the next save would lose them.
WideString DecodeUtf8(const std::string &path, std::string_view bytes)
{
    constexpr std::string_view kReplacement = "\xEF\xBF\xBD";
    WideString text = project::FromUtf8(bytes);
    std::size_t written = 0;
    for (std::size_t at = bytes.find(kReplacement); at != std::string_view::npos;
         at = bytes.find(kReplacement, at + kReplacement.size()))
        ++written;
    if (static_cast<std::size_t>(std::count(text.begin(), text.end(), u'\uFFFD')) != written)
        throw Failure(path, "The text is not UTF-8");
    return text;
}

} // namespace

WideString ReadTextFile(const std::string &path)
{
    const std::string content = ReadBytes(path);
    const std::string_view bytes = content;
    if (bytes.substr(0, 2) == "\xFF\xFE")
        return DecodeUtf16(path, bytes.substr(2), false);
    if (bytes.substr(0, 2) == "\xFE\xFF")
        return DecodeUtf16(path, bytes.substr(2), true);
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF")
        return DecodeUtf8(path, bytes.substr(3));
    return DecodeUtf8(path, bytes);
}

} // namespace marlet::tool
