// The properties of objects, and edits of them by their names.

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/history/Edit.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/masks/Mask.h>
#include <marlet/masks/PathPoint.h>
#include <marlet/plugins/PluginInstance.h>
#include <marlet/tracking/TrackingPoint.h>

namespace marlet::project
{

namespace
{

template <class Owner> std::shared_ptr<PropertyManager> Animated(const std::shared_ptr<Owner> &owner)
{
    Require(owner, "owner");
    return {owner, &owner->Animation()};
}

} // namespace

std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<AbstractLayer> &layer)
{
    return Animated(layer);
}

std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<Mask> &mask)
{
    return Animated(mask);
}

std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<PathPoint> &point)
{
    return Animated(point);
}

std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<TrackingPoint> &point)
{
    return Animated(point);
}

std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<PluginInstance> &instance)
{
    return Animated(instance);
}

std::shared_ptr<PropertyManager> PropertiesOf(const std::shared_ptr<AbstractSequenceObject> &object)
{
    Require(object, "owner");
    return {object, &object->Properties()};
}

void Edit::Touch(const std::shared_ptr<AbstractLayer> &owner, const char *property)
{
    Touch(PropertiesOf(owner), property, ObjectKind::Layer, owner->ID());
}

void Edit::Touch(const std::shared_ptr<Mask> &owner, const char *property)
{
    Touch(PropertiesOf(owner), property, ObjectKind::Mask, owner->ID());
}

void Edit::Touch(const std::shared_ptr<PathPoint> &owner, const char *property)
{
    Touch(PropertiesOf(owner), property, ObjectKind::PathPoint, owner->ID());
}

void Edit::Touch(const std::shared_ptr<TrackingPoint> &owner, const char *property)
{
    Touch(PropertiesOf(owner), property, ObjectKind::TrackingPoint, owner->ID());
}

void Edit::Touch(const std::shared_ptr<PluginInstance> &owner, const char *property)
{
    const std::shared_ptr<PropertyManager> properties = PropertiesOf(owner);
    const bool isEffect = owner->Type() == AbstractPluginInstance::InstanceType::Effect;
    Touch(properties, property, isEffect ? ObjectKind::Effect : ObjectKind::Transition, owner->ID());
}

void Edit::Touch(const std::shared_ptr<AbstractSequenceObject> &owner, const char *property)
{
    Touch(PropertiesOf(owner), property, ObjectKind::SequenceObject, owner->ID());
}

} // namespace marlet::project
