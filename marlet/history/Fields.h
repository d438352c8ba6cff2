#pragma once

#include <marlet/foundation/KyList.h>
#include <marlet/history/EditedPart.h>
#include <marlet/history/HeldSize.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <optional>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>
#include <vector>

namespace marlet::project
{

// What an object holds is described once, as a tuple of fields, each of which can be read and written. From
// that come taking, exchanging, comparing and telling of it.

/// A field that has operations of its own: get takes a const object, set an object and a value.
template <class Get, class Set> struct Field {
    Aspect aspect;
    Get get;
    Set set;
};

template <class Get, class Set> Field(Aspect, Get, Set) -> Field<Get, Set>;

/// A getter and a setter of the class.
template <class Object, class Result, class Argument>
constexpr auto Setting(Aspect aspect, Result (Object::*get)() const, void (Object::*set)(Argument))
{
    using Value = std::decay_t<Result>;
    return Field{aspect, [get](const Object &object) -> Value { return (object.*get)(); },
                 [set](Object &object, const Value &value) { (object.*set)(value); }};
}

/// A getter, and a setter that takes what those of the class would not.
template <class Object, class Result, class Value>
constexpr auto Setting(Aspect aspect, Result (Object::*get)() const, void (*set)(Object &, Value))
{
    return Field{aspect, [get](const Object &object) -> Value { return (object.*get)(); }, set};
}

/// What the class hands out by reference, to be changed there. Reading takes the const form: the other one
/// may drop what the class worked out of it.
template <class Object, class T>
constexpr auto Held(Aspect aspect, T &(Object::*place)(), const T &(Object::*constPlace)() const)
{
    return Field{aspect, [constPlace](const Object &object) -> T { return (object.*constPlace)(); },
                 [place](Object &object, const T &value) { (object.*place)() = value; }};
}

template <class T> struct IsList : std::false_type {
};
template <class T, template <class, class> class C> struct IsList<kytl::KyList<T, C>> : std::true_type {
};

/// Whether a value keeps objects alive.
template <class T> struct IsOwning : std::false_type {
};
template <class T> struct IsOwning<std::shared_ptr<T>> : std::true_type {
};
template <class T, template <class, class> class C>
struct IsOwning<kytl::KyList<std::shared_ptr<T>, C>> : std::true_type {
};

/// Whether two values are the same to the bit, so that nothing is lost by passing over them.
template <class T> bool AreSame(const T &a, const T &b)
{
    if constexpr (std::is_floating_point_v<T>)
        return std::memcmp(&a, &b, sizeof a) == 0;
    else
        return a == b;
}

template <class T> bool AreSame(const std::weak_ptr<T> &a, const std::weak_ptr<T> &b)
{
    return !a.owner_before(b) && !b.owner_before(a);
}

template <class T, template <class, class> class C>
bool AreSame(const kytl::KyList<T, C> &a, const kytl::KyList<T, C> &b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](const T &x, const T &y) { return AreSame(x, y); });
}

template <class T> std::size_t SizeBeyond(const std::optional<std::vector<T>> &value)
{
    return value ? value->capacity() * sizeof(T) : 0;
}

template <class T> std::size_t SizeBeyond(const T &value)
{
    if constexpr (IsList<T>::value)
        return value.size() * sizeof(typename T::value_type);
    else if constexpr (std::is_same_v<T, WideString>)
        return value.capacity() * sizeof(char16_t);
    else
        return 0;
}

template <class T> const std::shared_ptr<T> &Locked(const std::shared_ptr<T> &entry)
{
    return entry;
}

template <class T> std::shared_ptr<T> Locked(const std::weak_ptr<T> &entry)
{
    return entry.lock();
}

/// Calls the function for the entries of the first list that the second does not have as often.
template <class List, class Function>
void ForEachBeyond(const List &list, const List &other, const Function &function)
{
    std::unordered_map<const void *, int> known;
    for (const auto &entry : other)
        ++known[Locked(entry).get()];
    for (const auto &entry : list)
        if (const auto object = Locked(entry); object && known[object.get()]-- <= 0)
            function(*object);
}

template <class List> std::vector<kytl::KyID> EntriesBeyond(const List &list, const List &other)
{
    std::vector<kytl::KyID> beyond;
    ForEachBeyond(list, other, [&beyond](const auto &object) { beyond.push_back(object.ID()); });
    return beyond;
}

// What only a kept value still has of objects.

template <class T> std::size_t SizeOfHeld(const std::shared_ptr<T> &kept, const std::shared_ptr<T> &live)
{
    return kept && kept != live ? HeldSize(*kept) : 0;
}

template <class T, template <class, class> class C>
std::size_t SizeOfHeld(const kytl::KyList<std::shared_ptr<T>, C> &kept,
                       const kytl::KyList<std::shared_ptr<T>, C> &live)
{
    std::size_t size = 0;
    if (!AreSame(kept, live))
        ForEachBeyond(kept, live, [&size](const T &object) { size += HeldSize(object); });
    return size;
}

template <class T> void DescribeField(ObjectChange &change, Aspect aspect, const T &live, const T &kept)
{
    change.aspects |= aspect;
    if constexpr (IsList<T>::value) {
        std::ranges::copy(EntriesBeyond(live, kept), std::back_inserter(change.added));
        std::ranges::copy(EntriesBeyond(kept, live), std::back_inserter(change.removed));
    }
}

/// What an object holds by a table of fields, which lives as long as the program.
template <class Object, const auto &fields> class FieldsPart : public EditedPart
{
    template <class F>
    using ValueOf = std::decay_t<decltype(std::declval<F>().get(std::declval<const Object &>()))>;

    template <class... F>
    static std::tuple<ValueOf<F>...> Take(const Object &object, const std::tuple<F...> &table)
    {
        return std::apply([&](const F &...field) { return std::tuple<ValueOf<F>...>(field.get(object)...); },
                          table);
    }

public:
    using Values = decltype(Take(std::declval<const Object &>(), fields));

    FieldsPart(std::shared_ptr<Object> object, ObjectKind kind, const kytl::KyID &id)
        : EditedPart({object.get(), &fields, {}}),
          object_(std::move(object)),
          kind_(kind),
          id_(id),
          kept_(Take(*object_, fields))
    {
    }

    void Exchange() override { ExchangeAll(kIndices); }
    void Describe(ChangeList &changes) const override { DescribeAll(changes, kIndices); }

    std::size_t Size() const override { return sizeof *this + SizeOfAll(kIndices); }

protected:
    const Object &Live() const { return *object_; }
    const Values &Kept() const { return kept_; }

private:
    static constexpr auto kIndices = std::make_index_sequence<std::tuple_size_v<Values>>();

    /// All is taken first, since setting one field may change another.
    template <std::size_t... i> void ExchangeAll(std::index_sequence<i...>)
    {
        Values live = Take(*object_, fields);
        (GiveOne(std::get<i>(fields), std::get<i>(kept_)), ...);
        kept_ = std::move(live);
    }

    template <class F, class Value> void GiveOne(const F &field, const Value &kept)
    {
        if (!AreSame(field.get(*object_), kept))
            field.set(*object_, kept);
    }

    template <std::size_t... i> void DescribeAll(ChangeList &changes, std::index_sequence<i...>) const
    {
        (DescribeOne(changes, std::get<i>(fields), std::get<i>(kept_)), ...);
    }

    template <class F, class Value>
    void DescribeOne(ChangeList &changes, const F &field, const Value &kept) const
    {
        const Value live = field.get(*object_);
        if (!AreSame(live, kept))
            DescribeField(changes.Of(kind_, id_), field.aspect, live, kept);
    }

    template <std::size_t... i> std::size_t SizeOfAll(std::index_sequence<i...>) const
    {
        return (SizeOfOne(std::get<i>(fields), std::get<i>(kept_)) + ... + 0);
    }

    template <class F, class Value> std::size_t SizeOfOne(const F &field, const Value &kept) const
    {
        if constexpr (IsOwning<Value>::value)
            return SizeBeyond(kept) + SizeOfHeld(kept, field.get(*object_));
        else
            return SizeBeyond(kept);
    }

    std::shared_ptr<Object> object_;
    ObjectKind kind_;
    kytl::KyID id_;
    Values kept_;
};

template <class F, class Object> void TakeOverField(const F &field, Object &object, const Object &other)
{
    if (field.aspect == Aspect::Members)
        return;
    const auto value = field.get(other);
    if (!AreSame(field.get(std::as_const(object)), value))
        field.set(object, value);
}

/// Makes what an object says of itself that of another one. Its lists stay.
template <const auto &fields, class Object> void TakeOverFields(Object &object, const Object &other)
{
    std::apply([&](const auto &...field) { (TakeOverField(field, object, other), ...); }, fields);
}

template <const auto &fields, class Object>
std::unique_ptr<EditedPart> Make(const std::shared_ptr<Object> &object, ObjectKind kind)
{
    return std::make_unique<FieldsPart<Object, fields>>(object, kind, object->ID());
}

} // namespace marlet::project
