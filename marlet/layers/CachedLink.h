#pragma once

#include <marlet/foundation/KyID.h>

#include <atomic>
#include <memory>

namespace marlet::project
{

/// Remembers the object that an ID stands for, without keeping it alive.
///
/// Any number of threads may find and remember at once. What is remembered stands in entries that never
/// change; the newest counts. One that was replaced is freed by Forget, since a reader may still be looking
/// at it. Forget and destruction need the link for themselves alone.
template <class T> class CachedLink
{
public:
    CachedLink() = default;
    CachedLink(const CachedLink &other)
    {
        if (const Entry *entry = other.newest_.load(std::memory_order_acquire))
            newest_.store(new Entry{*entry, nullptr}, std::memory_order_relaxed);
    }
    CachedLink &operator=(const CachedLink &) = delete;
    ~CachedLink() { Forget(); }

    /// The object if it is alive and still has that ID, or null. Touches no shared count.
    T *Find(const kytl::KyID &id) const
    {
        const Entry *entry = newest_.load(std::memory_order_acquire);
        const bool counts = entry && !entry->object.expired() && entry->address->ID() == id;
        return counts ? entry->address : nullptr;
    }

    /// The same for a caller who keeps it.
    std::shared_ptr<T> Lock(const kytl::KyID &id) const
    {
        const Entry *entry = newest_.load(std::memory_order_acquire);
        std::shared_ptr<T> object = entry ? entry->object.lock() : nullptr;
        return object && object->ID() == id ? object : nullptr;
    }

    void Remember(const std::shared_ptr<T> &object) const
    {
        auto *entry = new Entry{{object, object.get()}, newest_.load(std::memory_order_relaxed)};
        while (!newest_.compare_exchange_weak(entry->older, entry, std::memory_order_release,
                                              std::memory_order_relaxed)) {
        }
    }

    void Forget()
    {
        const Entry *entry = newest_.exchange(nullptr);
        while (entry) {
            const Entry *older = entry->older;
            delete entry;
            entry = older;
        }
    }

private:
    struct Target {
        std::weak_ptr<T> object;
        T *address;
    };
    struct Entry : Target {
        Entry(const Target &target, Entry *next) : Target(target), older(next) {}

        Entry *older;
    };

    mutable std::atomic<Entry *> newest_ = nullptr;
};

} // namespace marlet::project
