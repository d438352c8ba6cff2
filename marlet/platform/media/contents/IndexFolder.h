#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace kyh::media
{

/// What is kept of a media file.
struct KeptIndex {
    std::string place;       ///< the full path of the entry, whether there is one or not
    bool isKept = false;     ///< for the file as it is
    std::uint64_t bytes = 0; ///< of the entry; the rest is 0 where nothing is kept
    int frames = 0;
    int pictures = 0; ///< packets of them
    std::int64_t samples = 0;
    int sounds = 0; ///< packets of them
};

/// A folder in which what was learnt of media files outlives the process. Without one nothing is kept.
class IndexFolder
{
public:
    std::string Path() const;
    /// UTF-8; empty for none.
    void SetPath(std::string path);
    /// What is kept of a file, and where. Nothing without a folder.
    std::optional<KeptIndex> Describe(const std::string &file) const;

private:
    mutable std::mutex lock_;
    std::string path_;
};

} // namespace kyh::media
