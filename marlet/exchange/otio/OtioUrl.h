#pragma once

#include <marlet/foundation/Strings.h>

#include <string_view>

namespace marlet::project
{

/// The path that a URL of media stands for, from a folder where it is relative. The folder has its trailing
/// separator, or is empty. What is no URL is a path as it is, a URL of anything but a file stays one.
WideString PathOfUrl(std::string_view url, const WideString &folder);
/// The reverse: relative where the file lies in the folder.
NarrowString UrlOfPath(const WideString &path, const WideString &folder);

/// A part of a path as a part of a URL.
NarrowString EncodedUrl(std::string_view path);

} // namespace marlet::project
