#pragma once

#include <marlet/foundation/Export.h>

#include <string>
#include <string_view>

namespace marlet::project
{

// Files that are read and written as a whole. Paths are in the bytes of the operating system. Any thread may
// call; two that write one file at once leave one of the two contents.

/// @throws FileException, also for a folder and for a gigabyte and more, as from /dev/zero
MARLET_EXPORT std::string ReadWholeFile(const std::string &path);

/// Puts a file in place: the bytes are written beside it under a name of their own, synced and renamed over
/// it, so that a crash or a full disk leaves the old file as it was. It keeps the old file's permissions and,
/// where that is allowed, its owner; a symbolic link is followed and stays. What is no regular file, such as
/// a pipe, is written to directly.
/// @param keptVersions how many earlier contents stay beside the file: NAME.~1~ is the one that was replaced
/// last, NAME.~2~ the one before it. Older ones than these are left alone.
/// @throws FileException; the file has its old content then, and no temporary file is left behind
MARLET_EXPORT void WriteWholeFile(const std::string &path, std::string_view bytes, int keptVersions = 0);

/// Tells beforehand of what stands in the way of a file, so that long work is not done for nothing.
/// @throws FileException
MARLET_EXPORT void RequireWritable(const std::string &path);

} // namespace marlet::project
