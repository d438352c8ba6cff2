#include <marlet/platform/media/contents/SoundIndex.h>

#include <algorithm>
#include <utility>

namespace kyh::media
{

SoundIndex::SoundIndex(std::vector<PacketMark> packets, std::vector<Content> contents, const SoundForm &form)
    : packets_(std::move(packets)), contents_(std::move(contents)), form_(form)
{
    packets_.shrink_to_fit();
    contents_.shrink_to_fit();
}

int SoundIndex::PacketAt(std::int64_t sample) const
{
    const auto behind =
        std::upper_bound(contents_.begin(), contents_.end(), sample,
                         [](std::int64_t number, const Content &content) { return number < content.first; });
    return std::max(static_cast<int>(behind - contents_.begin()) - 1, 0);
}

} // namespace kyh::media
