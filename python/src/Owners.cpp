#include "Owners.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/PluginInstance.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::python
{

PropertyOwner::~PropertyOwner() = default;

namespace
{

template <class Handle> class OwnerBy : public PropertyOwner
{
public:
    OwnerBy(const Handle &handle, ObjectKind kind) : handle_(handle), kind_(kind) {}

    const DocumentPointer &Owner() const override { return handle_.Owner(); }
    std::shared_ptr<PropertyManager> Properties() const override { return PropertiesOf(handle_.Get()); }
    ObjectKind Kind() const override { return kind_; }
    kytl::KyID ID() const override { return handle_.Get()->ID(); }

    void Announce(Edit &edit, const char *property) const override
    {
        if constexpr (std::is_same_v<Handle, InstanceHandle>) {
            const auto instance = handle_.Get();
            if (!instance->Plugin())
                return;
            edit.Touch(instance);
            instance->NotifyPropertyChanged(property);
        }
    }

private:
    Handle handle_;
    ObjectKind kind_;
};

template <class Handle> OwnerPointer MakeOwner(const Handle &handle, ObjectKind kind)
{
    return std::make_shared<OwnerBy<Handle>>(handle, kind);
}

} // namespace

OwnerPointer OwnerOf(const LayerHandle &layer)
{
    return MakeOwner(layer, ObjectKind::Layer);
}

OwnerPointer OwnerOf(const MaskHandle &mask)
{
    return MakeOwner(mask, ObjectKind::Mask);
}

OwnerPointer OwnerOf(const PathPointHandle &point)
{
    return MakeOwner(point, ObjectKind::PathPoint);
}

OwnerPointer OwnerOf(const TrackingPointHandle &point)
{
    return MakeOwner(point, ObjectKind::TrackingPoint);
}

OwnerPointer OwnerOf(const InstanceHandle &instance)
{
    const bool isEffect = instance.Get()->Type() == AbstractPluginInstance::InstanceType::Effect;
    return MakeOwner(instance, isEffect ? ObjectKind::Effect : ObjectKind::Transition);
}

OwnerPointer OwnerOf(const ObjectHandle &object)
{
    return MakeOwner(object, ObjectKind::SequenceObject);
}

std::shared_ptr<PropertyManager> PropertyHandle::Properties() const
{
    auto properties = owner->Properties();
    if (!properties->HasProperty(name.c_str()))
        throw py::key_error(name);
    return properties;
}

AnimatedProperty PropertyHandle::Animated() const
{
    Properties();
    return owner->Animated(name);
}

} // namespace marlet::python
