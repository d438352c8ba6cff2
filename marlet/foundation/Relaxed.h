#pragma once

#include <atomic>

namespace marlet::project
{

/// A small value that several threads may read and write without tearing or a data race, in no particular
/// order. Copies like the value that it holds.
template <class T> class Relaxed
{
public:
    Relaxed(T value = T()) : value_(value) {}
    Relaxed(const Relaxed &other) : value_(other.Load()) {}
    Relaxed &operator=(const Relaxed &other)
    {
        Store(other.Load());
        return *this;
    }

    T Load() const { return value_.load(std::memory_order_relaxed); }
    void Store(T value) { value_.store(value, std::memory_order_relaxed); }

private:
    std::atomic<T> value_;
};

} // namespace marlet::project
