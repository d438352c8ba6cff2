#pragma once

#include <marlet/platform/media/contents/MediaContents.h>

#include <optional>
#include <string>
#include <string_view>

namespace kyh::media
{

/// What a kept index says that it was made of.
struct ContentsOrigin {
    std::string path; ///< full
    FileIdentity identity;

    bool operator==(const ContentsOrigin &) const = default;
};

/// The bytes that an index is kept as. They count for this version of the library and of libav.
std::string ContentsToBytes(const ContentsOrigin &origin, const MediaContents &contents);
/// The same of contents that are bytes already.
std::string SignedContents(const ContentsOrigin &origin, std::string_view contents);
/// Nothing if they are damaged, of another version, or of another file.
std::optional<MediaContents> ContentsFromBytes(const ContentsOrigin &origin, std::string_view bytes);

} // namespace kyh::media
