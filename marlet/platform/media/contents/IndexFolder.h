#pragma once

#include <mutex>
#include <string>

namespace kyh::media
{

/// A folder in which what was learnt of media files outlives the process. Without one nothing is kept.
class IndexFolder
{
public:
    std::string Path() const;
    /// UTF-8; empty for none.
    void SetPath(std::string path);

private:
    mutable std::mutex lock_;
    std::string path_;
};

} // namespace kyh::media
