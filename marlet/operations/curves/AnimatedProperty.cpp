#include <marlet/operations/curves/AnimatedProperty.h>

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

ObjectKind KindOf(const PluginInstance &instance)
{
    const bool isEffect = instance.Type() == AbstractPluginInstance::InstanceType::Effect;
    return isEffect ? ObjectKind::Effect : ObjectKind::Transition;
}

} // namespace

// PropertiesOf comes first among the arguments, since it refuses an owner that is null.

AnimatedProperty::AnimatedProperty(const std::shared_ptr<PropertyManager> &properties,
                                   const NarrowString &name, ObjectKind kind, const kytl::KyID &owner)
    : properties_(properties), name_(name), kind_(kind), owner_(owner)
{
    Require(properties, "property manager");
    properties->GetPropertyID(name.c_str());
}

AnimatedProperty::AnimatedProperty(const std::shared_ptr<AbstractLayer> &owner, const NarrowString &name)
    : AnimatedProperty{PropertiesOf(owner), name, ObjectKind::Layer, owner->ID()}
{
}

AnimatedProperty::AnimatedProperty(const std::shared_ptr<Mask> &owner, const NarrowString &name)
    : AnimatedProperty{PropertiesOf(owner), name, ObjectKind::Mask, owner->ID()}
{
}

AnimatedProperty::AnimatedProperty(const std::shared_ptr<PathPoint> &owner, const NarrowString &name)
    : AnimatedProperty{PropertiesOf(owner), name, ObjectKind::PathPoint, owner->ID()}
{
}

AnimatedProperty::AnimatedProperty(const std::shared_ptr<TrackingPoint> &owner, const NarrowString &name)
    : AnimatedProperty{PropertiesOf(owner), name, ObjectKind::TrackingPoint, owner->ID()}
{
}

AnimatedProperty::AnimatedProperty(const std::shared_ptr<PluginInstance> &owner, const NarrowString &name)
    : AnimatedProperty{PropertiesOf(owner), name, KindOf(*owner), owner->ID()}
{
}

AnimatedProperty::AnimatedProperty(const std::shared_ptr<AbstractSequenceObject> &owner,
                                   const NarrowString &name)
    : AnimatedProperty{PropertiesOf(owner), name, ObjectKind::SequenceObject, owner->ID()}
{
}

void AnimatedProperty::Touch(Edit &edit, const std::vector<kytl::KyID> &keys) const
{
    // A key frame alone takes about as much as four in their list.
    constexpr std::size_t kCost = 4;
    if (keys.size() * kCost > Keys().Count()) {
        Touch(edit);
        return;
    }
    for (const kytl::KyID &key : keys)
        edit.TouchKeyFrame(properties_, name_.c_str(), key, kind_, owner_);
}

void AnimatedProperty::Touch(Edit &edit) const
{
    edit.Touch(properties_, name_.c_str(), kind_, owner_);
}

} // namespace marlet::project
