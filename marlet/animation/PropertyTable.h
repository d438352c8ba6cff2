#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>

#include <vector>

namespace marlet::project
{

class XmlCursor;

/// A property that every object of a class has.
struct PropertyRow {
    const char *name;
    PropertyValue value;
    PropertyManager::Type type = PropertyManager::Type::Animatable;
    bool spatial = false;
    unsigned int since = 0; ///< the version of the class's element that brought it
};

/// The properties of a class in the order in which they are created and looked for.
using PropertyTable = std::vector<PropertyRow>;

PropertyTable operator+(PropertyTable first, const PropertyTable &second);

/// A property that has a static value only.
PropertyRow FixedProperty(const char *name, const PropertyValue &value);

/// @throws ProjectException with the status of a property that cannot be created
void CreateProperties(PropertyManager &manager, const PropertyTable &properties);

/// Checks what a manager holds that was read from the element of a class in that version. Properties that
/// later versions brought are looked for after the others, once those that it lacks are created.
/// @throws ProjectException with the name of the first property that is missing
void RequireProperties(const XmlCursor &element, PropertyManager &manager, const PropertyTable &properties,
                       unsigned int version);

} // namespace marlet::project
