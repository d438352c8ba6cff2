#pragma once

#include "Document.h"
#include "Errors.h"

#include <functional>
#include <memory>

namespace marlet::python
{

/// What Python has of an object of a project: the document, and the object weakly. Whether the object is
/// still in the project is looked up when it is used after a change, so that a handle is never more than out
/// of date.
template <class T> class Held
{
public:
    using Object = T;
    /// Whether the object is in the project. Throws, or answers false, if it is not.
    using Presence = std::function<bool(const Project &, const T &)>;

    Held(DocumentPointer document, const std::shared_ptr<T> &object, Presence presence)
        : document_(std::move(document)),
          object_(object),
          address_(object.get()),
          presence_(std::move(presence))
    {
    }

    const DocumentPointer &Owner() const { return document_; }
    const std::shared_ptr<Project> &InProject() const { return document_->Open(); }

    /// The object, which keeps it alive no longer than a call. @throws Failure ClosedError, GoneError
    std::shared_ptr<T> Get() const
    {
        const Project &project = *document_->Open();
        std::shared_ptr<T> object = object_.lock();
        if (object && generation_ == document_->Generation())
            return object;
        if (!object || !presence_(project, *object))
            throw Failure("GoneError", "The object is not in the project any more");
        generation_ = document_->Generation();
        return object;
    }

    bool IsThere() const
    try {
        return Get() != nullptr;
    } catch (const Failure &) {
        return false;
    }

    /// The same object, whether or not it is still there.
    bool operator==(const Held &other) const
    {
        return address_ == other.address_ && document_ == other.document_ &&
               !object_.owner_before(other.object_) && !other.object_.owner_before(object_);
    }
    std::size_t Hash() const { return std::hash<const void *>()(address_); }

private:
    DocumentPointer document_;
    std::weak_ptr<T> object_;
    const void *address_;
    Presence presence_;
    mutable std::uint64_t generation_ = 0; ///< of the last look-up that found it
};

/// The handle of a class that is derived from that of another handle, or the same class in another role.
template <class T, class Base> class HeldAs : public Base
{
public:
    using Object = T;

    explicit HeldAs(const Base &base) : Base(base) {}
    std::shared_ptr<T> Get() const { return std::static_pointer_cast<T>(Base::Get()); }
};

/// Whether one of the pointers in a list is that object.
template <class List, class T> bool Lists(const List &list, const T &object)
{
    for (const auto &entry : list)
        if (entry.get() == &object)
            return true;
    return false;
}

/// What all handles can do.
template <class Handle, class Class> void BindIdentity(Class &type)
{
    using Base = Held<typename Handle::Object>;
    type.def(
        "__eq__", [](const Handle &a, const Handle &b) { return static_cast<const Base &>(a) == b; },
        py::is_operator());
    type.def("__hash__", [](const Handle &handle) { return handle.Hash(); });
    type.def_property_readonly(
        "exists", &Handle::IsThere,
        "Whether the object is in its project, and the project open. What is not there "
        "raises GoneError or ClosedError when it is used.");
}

/// Something of an object that is read by one function and written by another, as an edit of its own.
template <class Handle, class Class, class Read, class Write>
void BindField(Class &type, const char *name, const char16_t *label, Read read, Write write, const char *help)
{
    using Object = typename Handle::Object;
    using Value = std::decay_t<decltype(read(std::declval<const Object &>()))>;
    type.def_property(
        name, [read](const Handle &handle) -> Value { return read(*handle.Get()); },
        [write, label](const Handle &handle, const Value &value) {
            const auto object = handle.Get();
            Edited(*handle.Owner(), label, [&](Edit &edit) {
                edit.Touch(object);
                write(*object, value);
            });
        },
        help);
}

template <class Handle, class Class, class Read>
void BindFact(Class &type, const char *name, Read read, const char *help)
{
    type.def_property_readonly(
        name, [read](const Handle &handle) { return read(*handle.Get()); }, help);
}

} // namespace marlet::python
