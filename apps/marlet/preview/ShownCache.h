#pragma once

#include <cstddef>
#include <list>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

namespace marlet::tool
{

/// Keeps what was made under its key, so that what does not change from frame to frame is made once. Only
/// what is asked for a second time is kept; what nobody has asked for longest goes first. For any number of
/// threads.
template <class Made> class ShownCache
{
public:
    using Pointer = std::shared_ptr<const Made>;

    /// The most that is kept, in bytes, and how many a thing takes.
    ShownCache(std::size_t budget, std::size_t (*bytesOf)(const Made &)) : budget_(budget), bytesOf_(bytesOf)
    {
    }

    /// What is there under the key, or what `make` makes.
    template <class Make> Pointer Get(const std::string &key, Make make)
    {
        if (Pointer known = Find(key))
            return known;
        // Made without the lock: two threads may make the same, and neither waits.
        auto made = std::make_shared<const Made>(make());
        Keep(key, made);
        return made;
    }

private:
    struct Entry {
        std::string key;
        Pointer made; ///< null as long as it was asked for once
        std::size_t bytes = 0;
    };
    using Entries = std::list<Entry>;

    Pointer Find(const std::string &key)
    {
        const std::lock_guard lock(mutex_);
        const auto found = places_.find(key);
        if (found == places_.end())
            return {};
        entries_.splice(entries_.begin(), entries_, found->second);
        return found->second->made;
    }

    void Keep(const std::string &key, const Pointer &made)
    {
        const std::lock_guard lock(mutex_);
        const auto found = places_.find(key);
        if (found == places_.end()) {
            entries_.push_front({key, {}, 2 * key.size()});
            places_.emplace(key, entries_.begin());
            used_ += 2 * key.size();
        } else if (!found->second->made) {
            const std::size_t bytes = bytesOf_(*made);
            found->second->made = made;
            found->second->bytes += bytes;
            used_ += bytes;
        }
        while (used_ > budget_ && !entries_.empty()) {
            used_ -= entries_.back().bytes;
            places_.erase(entries_.back().key);
            entries_.pop_back();
        }
    }

    std::size_t budget_;
    std::size_t (*bytesOf_)(const Made &);
    std::mutex mutex_;
    Entries entries_;
    std::unordered_map<std::string, typename Entries::iterator> places_;
    std::size_t used_ = 0;
};

} // namespace marlet::tool
