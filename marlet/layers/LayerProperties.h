#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>

#include <vector>

namespace marlet::project
{

/// A property that every layer of a class has.
struct LayerProperty {
    const char *name;
    PropertyValue value;
    PropertyManager::Type type = PropertyManager::Type::Animatable;
    bool spatial = false;
    unsigned int since = 0; ///< the version of the class's element that brought it
};

/// The properties of a class in the order in which they are created and looked for.
using LayerProperties = std::vector<LayerProperty>;

LayerProperties operator+(LayerProperties first, const LayerProperties &second);

/// "position" or another point that moves along a path.
LayerProperty PathProperty(const char *name, const kytl::matl::KyPoint<3, float> &point);
/// A property that has a static value only.
LayerProperty FixedProperty(const char *name, const PropertyValue &value);
/// "orientation" and the three rotations.
LayerProperties RotationProperties(const Orientation3D &orientation);
/// From "anchorPoint" to "rotationZ": what places a layer that has a size.
LayerProperties TransformationProperties();
/// "opacity", in percent.
LayerProperty OpacityProperty();
/// From "illuminated" to "matEmissiveColor": what a layer and the lights of its composition do to each other.
LayerProperties MaterialProperties();

/// @throws ProjectException with the status of a property that cannot be created
void CreateProperties(PropertyManager &manager, const LayerProperties &properties);

/// Checks what an element of that version holds. Properties that later versions brought are created first,
/// and looked for after the others.
/// @throws ProjectException with the name of the first property that is missing
void RequireProperties(PropertyManager &manager, const LayerProperties &properties, unsigned int version);

} // namespace marlet::project
