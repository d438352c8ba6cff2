#pragma once

#include <marlet/foundation/Strings.h>

#include <boost/smart_ptr/shared_array.hpp>

#include <optional>

namespace marlet::project::platform
{

// Still image files, by the decoders of Qt. Paths are full paths. Pictures are not turned by their EXIF
// orientation. A picture may take up to 1 GB once it is decoded, or what the host has set as Qt's limit.

/// What a file's header tells, in pixels.
struct ImageHeader {
    int width = 0;
    int height = 0;
    bool hasAlpha = false;
};

struct ImagePixels {
    boost::shared_array<unsigned char> bytes;
    int width = 0;
    int height = 0;
};

bool FileExists(const WideString &path);
/// The last component of a path.
WideString FileName(const WideString &path);
/// Nothing if the file cannot be opened as an image. A picture whose format keeps its size to itself is
/// decoded to learn it.
std::optional<ImageHeader> ReadImageHeader(const WideString &path);
/// The picture, scaled down to fit into the size, as B, G, R, A or as R, G, B. Nothing if it cannot be
/// decoded.
std::optional<ImagePixels> ReadImagePixels(const WideString &path, int maxWidth, int maxHeight,
                                           bool withAlpha);

} // namespace marlet::project::platform
