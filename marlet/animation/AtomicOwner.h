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
    AtomicOwner(AtomicOwner &&other) noexcept : object_(other.Release()) {}
    AtomicOwner &operator=(AtomicOwner &&other) noexcept
    {
        Reset(other.Release());
        return *this;
    }
    ~AtomicOwner() { delete Load(); }

    /// This and moving are for one thread alone, and cost no more than with an ordinary pointer.
    void Reset(T *object = nullptr)
    {
        delete Load();
        object_.store(object, std::memory_order_relaxed);
    }

    T *Load() const { return object_.load(std::memory_order_acquire); }

    /// Returns the old object.
    std::unique_ptr<T> Exchange(std::unique_ptr<T> object)
    {
        return std::unique_ptr<T>(object_.exchange(object.release(), std::memory_order_acq_rel));
    }

private:
    T *Release()
    {
        T *object = Load();
        object_.store(nullptr, std::memory_order_relaxed);
        return object;
    }

    std::atomic<T *> object_{nullptr};
};

} // namespace marlet::project
