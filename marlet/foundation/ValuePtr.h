#pragma once

#include <memory>
#include <utility>

namespace marlet::project
{

/// Owns one T on the heap and copies it when it is copied, so that a class whose only member it is copies and
/// swaps like its data. Const access gives a const T. Never empty, except after it was moved from.
///
/// T may be incomplete where a ValuePtr is declared; the class that holds one defines its copy constructor,
/// assignment and destructor where T is complete.
template <class T> class ValuePtr
{
public:
    ValuePtr() : value_(std::make_unique<T>()) {}
    explicit ValuePtr(std::unique_ptr<T> value) : value_(std::move(value)) {}
    ValuePtr(const ValuePtr &other) : value_(std::make_unique<T>(*other.value_)) {}
    ValuePtr(ValuePtr &&other) noexcept = default;
    ValuePtr &operator=(ValuePtr other) noexcept
    {
        value_.swap(other.value_);
        return *this;
    }
    ~ValuePtr() = default;

    T *operator->() { return value_.get(); }
    const T *operator->() const { return value_.get(); }
    T &operator*() { return *value_; }
    const T &operator*() const { return *value_; }

    /// Leaves the pointer empty, for an owner that ends.
    std::unique_ptr<T> Release() { return std::move(value_); }
    void Swap(ValuePtr &other) noexcept { value_.swap(other.value_); }

private:
    std::unique_ptr<T> value_;
};

/// A member that a copy of its owner starts afresh instead of taking over: a lock, a cache, a list of users.
template <class T> class Uncopied
{
public:
    Uncopied() = default;
    Uncopied(const Uncopied &) : value_() {}
    Uncopied &operator=(const Uncopied &) { return *this; }

    T *operator->() { return &value_; }
    const T *operator->() const { return &value_; }
    T &operator*() { return value_; }
    const T &operator*() const { return value_; }

private:
    T value_{};
};

} // namespace marlet::project
