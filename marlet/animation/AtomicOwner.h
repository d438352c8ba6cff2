#pragma once

#include <atomic>
#include <memory>

namespace marlet::project
{

/// Owns an object that threads may read while another one puts the next in its place. Who puts it there also
/// sees to it that the old one lives as long as it may be read, and holds a lock against others who do.
template <class T> class AtomicOwner
{
public:
    AtomicOwner() = default;
    AtomicOwner(const AtomicOwner &) = delete;
    AtomicOwner &operator=(const AtomicOwner &) = delete;
    ~AtomicOwner() { delete Load(); }

    T *Load() const { return object_.load(std::memory_order_acquire); }

    /// Returns the old object.
    std::unique_ptr<T> Exchange(std::unique_ptr<T> object)
    {
        return std::unique_ptr<T>(object_.exchange(object.release(), std::memory_order_acq_rel));
    }

private:
    std::atomic<T *> object_{nullptr};
};

} // namespace marlet::project
