#pragma once

#include <list>
#include <memory>
#include <vector>

namespace kytl
{

/// A standard sequence with the few operations that the document's lists are used with. C is std::vector, or
/// std::list where elements are inserted and moved a lot. Its order is the order of the file.
///
/// Callbacks take their element by value, so that they own what they are handed even if the list changes
/// later. A callback must not change the list that it is called from.
template <class T, template <class, class> class C = std::vector>
class KyList : public C<T, std::allocator<T>>
{
    using Container = C<T, std::allocator<T>>;

public:
    using Container::Container;

    void Add(const T &element) { this->push_back(element); }
    void Clear() { this->clear(); }
    unsigned int Count() const { return static_cast<unsigned int>(this->size()); }
    bool IsEmpty() const { return this->empty(); }

    /// Calls the callback for each element from first to last.
    template <class Callback> void ForEach(Callback &&callback) const
    {
        for (const T &element : *this)
            callback(T(element));
    }

    /// The first element that the predicate accepts, or a default-constructed T.
    template <class Predicate> T FindFirst(Predicate &&predicate) const
    {
        for (const T &element : *this)
            if (predicate(T(element)))
                return element;
        return T();
    }

    template <class Predicate> bool Any(Predicate &&predicate) const
    {
        int index = 0;
        return FindIndex(predicate, index);
    }

    /// Stores the position of the first element that the predicate accepts. False, with index untouched, if
    /// there is none.
    template <class Predicate> bool FindIndex(Predicate &&predicate, int &index) const
    {
        int position = 0;
        for (const T &element : *this) {
            if (predicate(T(element))) {
                index = position;
                return true;
            }
            ++position;
        }
        return false;
    }
};

} // namespace kytl
