#pragma once

#include <marlet/foundation/Strings.h>

#include <string>

namespace marlet::tool
{

/// The text of a file in UTF-8, or in UTF-16 if it begins with a byte order mark.
/// @throws Failure, with the file as its subject, if it cannot be read or is no such text
project::WideString ReadTextFile(const std::string &path);

/// Whether two paths lead to one file, over links of either kind. What is no regular file, such as a
/// terminal, keeps nothing that could be lost.
bool IsSameFile(const std::string &a, const std::string &b);

/// Tells beforehand of what stands in the way of a file, so that long work is not done for nothing.
/// @throws Failure, with the file as its subject
void RequireWritable(const std::string &path);

/// Puts a file in place as a whole: the bytes are written beside it, synced and renamed over it, so that a
/// crash or a full disk leaves the old file as it was. It keeps the old file's permissions; a symbolic link
/// is followed. What is no regular file, such as a pipe, is written to directly.
/// @throws Failure, with the file as its subject; nothing is left behind then
void WriteFile(const std::string &path, std::string_view bytes);

} // namespace marlet::tool
