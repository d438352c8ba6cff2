#pragma once

#include <marlet/platform/media/files/OpenFiles.h>

#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>
#include <string>

namespace kyh::media
{

struct MediaContents;

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
/// Several processes may use the same folder; whatever goes wrong in it is as if it kept nothing.
class IndexFolder
{
public:
    static constexpr std::uintmax_t kMostBytes = std::uintmax_t{512} << 20;
    /// After so long without a use, entries go.
    static constexpr std::chrono::hours kLongest{60 * 24};

    std::string Path() const;
    /// UTF-8; empty for none. The folder is made once there is something to keep.
    void SetPath(std::string path);

    /// What is kept of a file, if it still is what it was.
    std::optional<MediaContents> Find(const std::string &file, const FileIdentity &identity) const;
    /// Keeps what was learnt of a file, in place of what was kept before.
    void Keep(const std::string &file, const FileIdentity &identity, const MediaContents &contents) const;
    /// What is kept of a file, and where. Nothing without a folder.
    std::optional<KeptIndex> Describe(const std::string &file) const;
    /// Takes away the entries that were not used for too long, and of the others those that were not used for
    /// longest, until they take no more than `most` bytes together.
    void Prune(std::uintmax_t most = kMostBytes) const;

private:
    mutable std::mutex lock_;
    std::string path_;
};

} // namespace kyh::media
