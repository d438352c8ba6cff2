#pragma once

#include <marlet/foundation/Strings.h>

#include <boost/smart_ptr/shared_array.hpp>

#include <optional>

namespace marlet::project::platform
{

// Still image files, by the decoders of Qt. Paths are full paths. Pictures are not turned by their EXIF
// orientation. A picture may take up to 1 GB once it is decoded, or what the host has set as Qt's limit.

/// What is known of a file's picture without its pixels.
struct ImageHeader {
    int width = 0; ///< pixels
    int height = 0;
    bool hasAlpha = false; ///< whether the decoded picture has an alpha channel
};

struct ImagePixels {
    boost::shared_array<unsigned char> bytes;
    int width = 0;
    int height = 0;
};

bool FileExists(const WideString &path);
/// The last component of a path.
WideString FileName(const WideString &path);
/// Nothing if the file cannot be opened as an image. A picture whose header does not tell its size, or
/// whether it has an alpha channel, is decoded once to learn it; one whose header tells the size is an image
/// even if it does not decode.
std::optional<ImageHeader> ReadImageHeader(const WideString &path);
/// The picture, scaled down to fit into the size, as B, G, R, A or as R, G, B. Nothing if it cannot be
/// decoded.
std::optional<ImagePixels> ReadImagePixels(const WideString &path, int maxWidth, int maxHeight,
                                           bool withAlpha);

} // namespace marlet::project::platform
