#pragma once

#include "Handles.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/operations/curves/AnimatedProperty.h>

#include <memory>
#include <string>

namespace marlet::python
{

/// What has properties, of whatever class it is. Shared by the handles of its properties and key frames.
class PropertyOwner
{
public:
    virtual ~PropertyOwner();

    virtual const DocumentPointer &Owner() const = 0;
    /// Shares the ownership of the object. @throws Failure ClosedError, GoneError
    virtual std::shared_ptr<PropertyManager> Properties() const = 0;
    virtual ObjectKind Kind() const = 0;
    virtual kytl::KyID ID() const = 0;
    /// Tells a plug-in of a property that is another one.
    virtual void Announce(Edit &edit, const char *property) const = 0;

    AnimatedProperty Animated(const NarrowString &name) const { return {Properties(), name, Kind(), ID()}; }
};

using OwnerPointer = std::shared_ptr<const PropertyOwner>;

OwnerPointer OwnerOf(const LayerHandle &layer);
OwnerPointer OwnerOf(const MaskHandle &mask);
OwnerPointer OwnerOf(const PathPointHandle &point);
OwnerPointer OwnerOf(const TrackingPointHandle &point);
OwnerPointer OwnerOf(const InstanceHandle &instance);
OwnerPointer OwnerOf(const ObjectHandle &object);

/// The properties of an object, as a mapping.
struct PropertiesHandle {
    OwnerPointer owner;
};

/// One of them.
struct PropertyHandle {
    OwnerPointer owner;
    NarrowString name;

    /// @throws py::key_error if there is no such property
    std::shared_ptr<PropertyManager> Properties() const;
    AnimatedProperty Animated() const;
    /// Changes the property as an edit of its own.
    template <class Function> auto Change(const WideString &label, const Function &change) const
    {
        const auto properties = Properties();
        return Edited(*owner->Owner(), label, [&](Edit &edit) {
            edit.Touch(properties, name.c_str(), owner->Kind(), owner->ID());
            change(*properties);
            owner->Announce(edit, name.c_str());
        });
    }
};

/// Has a class of handles show the properties of its object.
template <class Handle, class Class> void BindProperties(Class &type)
{
    type.def_property_readonly(
        "properties",
        [](const Handle &handle) {
            handle.Get();
            return PropertiesHandle{OwnerOf(handle)};
        },
        "What can be animated of it, as a mapping from names to properties.");
}

} // namespace marlet::python
