#pragma once

#include <atomic>
#include <memory>
#include <type_traits>

namespace marlet::project
{

/// Points at an object that threads may read while another one puts the next in its place. Who puts it there
/// also sees to it that the old one lives as long as it may be read, and holds a lock against others who do.
///
/// It copies like an ordinary pointer, so that arrays of it move as fast as memory does. Whoever has the
/// array deletes the objects.
template <class T> class AtomicPointer
{
public:
    T *Load() const { return std::atomic_ref(object_).load(std::memory_order_acquire); }

    /// Returns the old object.
    std::unique_ptr<T> Exchange(std::unique_ptr<T> object)
    {
        return std::unique_ptr<T>(
            std::atomic_ref(object_).exchange(object.release(), std::memory_order_acq_rel));
    }

    /// For one thread alone: deletes the object and points at another one.
    void Reset(T *object = nullptr)
    {
        delete object_;
        object_ = object;
    }

private:
    mutable T *object_ = nullptr;
};

static_assert(std::is_trivially_copyable_v<AtomicPointer<int>>);

/// The same with an object of its own.
template <class T> class AtomicOwner : public AtomicPointer<T>
{
public:
    AtomicOwner() = default;
    AtomicOwner(const AtomicOwner &) = delete;
    AtomicOwner &operator=(const AtomicOwner &) = delete;
    ~AtomicOwner() { this->Reset(); }
};

} // namespace marlet::project
