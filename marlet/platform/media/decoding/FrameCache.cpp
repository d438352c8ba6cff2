#include <marlet/platform/media/decoding/FrameCache.h>

#include <functional>
#include <utility>

namespace kyh::media
{

using kytl::thread::KyScopedLock;

namespace
{

/// For so many frames that are asked for, a stream counts as being read.
constexpr std::uint64_t kOfLate = 64;

} // namespace

std::size_t FrameCache::Hash::operator()(const Key &key) const
{
    constexpr std::uint64_t kSpread = 0x9E3779B97F4A7C15;
    const std::uint64_t place = key.stream * 3 + static_cast<std::uint64_t>(key.kind);
    return std::hash<std::uint64_t>()(place * kSpread + static_cast<std::uint64_t>(key.number));
}

void FrameCache::SetBudget(std::size_t bytes)
{
    budget_ = bytes;
    Shrink();
}

std::size_t FrameCache::Used() const
{
    return memory_.Bytes() + foreignBytes_ + charged_;
}

std::size_t FrameCache::ForeignBytes(const AVFrame &frame) const
{
    std::size_t bytes = 0;
    for (const AVBufferRef *buffer : frame.buf)
        if (buffer && !memory_.Has(*buffer))
            bytes += buffer->size;
    return bytes;
}

/// Takes an entry out, to be freed where the lock is not held.
FrameCache::Entries FrameCache::Take(Entries::iterator entry)
{
    Entries taken;
    places_.erase(entry->key);
    foreignBytes_ -= entry->foreignBytes;
    taken.splice(taken.begin(), entries_, entry);
    return taken;
}

FrameCache::Entries FrameCache::TakeOldest()
{
    const KyScopedLock lock(lock_);
    return entries_.empty() ? Entries() : Take(std::prev(entries_.end()));
}

void FrameCache::Shrink()
{
    while (Used() > budget_)
        if (!memory_.FreeIdle() && TakeOldest().empty())
            return;
}

std::size_t FrameCache::CountReaders(std::uint64_t stream)
{
    const KyScopedLock lock(lock_);
    readers_[stream] = ++reads_;
    std::erase_if(readers_, [this](const auto &reader) { return reader.second + kOfLate < reads_; });
    return readers_.size();
}

bool FrameCache::Find(const Key &key, AVFrame &frame)
{
    const KyScopedLock lock(lock_);
    const auto place = places_.find(key);
    if (place == places_.end())
        return false;
    entries_.splice(entries_.begin(), entries_, place->second);
    av_frame_unref(&frame);
    return av_frame_ref(&frame, entries_.front().frame.get()) >= 0;
}

void FrameCache::Put(const Key &key, const AVFrame &frame)
{
    if (budget_ == 0)
        return;
    Entries added;
    added.push_back({key, Allocated(FramePtr(av_frame_clone(&frame))), ForeignBytes(frame)});
    Entries replaced;
    {
        const KyScopedLock lock(lock_);
        const auto [place, isNew] = places_.try_emplace(key, added.begin());
        if (!isNew) {
            foreignBytes_ -= place->second->foreignBytes;
            replaced.splice(replaced.begin(), entries_, std::exchange(place->second, added.begin()));
        }
        foreignBytes_ += added.front().foreignBytes;
        entries_.splice(entries_.begin(), added);
    }
    Shrink();
}

void FrameCache::Drop(std::uint64_t stream)
{
    Entries dropped;
    {
        const KyScopedLock lock(lock_);
        for (auto entry = entries_.begin(); entry != entries_.end();) {
            const auto behind = std::next(entry);
            if (entry->key.stream == stream)
                dropped.splice(dropped.end(), Take(entry));
            entry = behind;
        }
    }
    dropped.clear();
    memory_.FreeIdle();
}

BufferPtr FrameCache::NewBuffer(std::size_t size)
{
    for (;;) {
        if (BufferPtr buffer = memory_.Reuse(size))
            return buffer;
        if (Used() + size <= budget_ || (!memory_.FreeIdle() && TakeOldest().empty()))
            return memory_.New(size);
    }
}

void FrameCache::Charge(std::size_t bytes)
{
    charged_ += bytes;
    Shrink();
}

} // namespace kyh::media
