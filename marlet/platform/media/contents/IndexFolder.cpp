#include <marlet/platform/media/contents/IndexFolder.h>

#include <utility>

namespace kyh::media
{

std::string IndexFolder::Path() const
{
    const std::lock_guard hold(lock_);
    return path_;
}

void IndexFolder::SetPath(std::string path)
{
    const std::lock_guard hold(lock_);
    path_ = std::move(path);
}

std::optional<KeptIndex> IndexFolder::Describe(const std::string &) const
{
    return std::nullopt;
}

} // namespace kyh::media
