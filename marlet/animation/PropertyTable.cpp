#include <marlet/animation/PropertyTable.h>

#include <marlet/foundation/Exceptions.h>
#include <marlet/foundation/xml/LoadContext.h>

namespace marlet::project
{

namespace
{

void Create(PropertyManager &manager, const PropertyRow &property)
{
    const int status =
        property.spatial
            ? manager.CreateSpatialProperty(property.name, property.value, property.type, nullptr)
            : manager.CreateProperty(property.name, property.value, property.type, nullptr);
    if (status != PropertyManager::kCreated)
        throw ProjectException(status, {});
}

void Require(const PropertyManager &manager, const PropertyRow &property)
{
    if (!manager.HasProperty(property.name))
        throw ProjectException(ProjectException::kMissingProperty, property.name);
}

} // namespace

PropertyTable operator+(PropertyTable first, const PropertyTable &second)
{
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

PropertyRow FixedProperty(const char *name, const PropertyValue &value)
{
    return {.name = name, .value = value, .type = PropertyManager::Type::NotAnimatable};
}

void CreateProperties(PropertyManager &manager, const PropertyTable &properties)
{
    for (const PropertyRow &property : properties)
        Create(manager, property);
}

void RequireProperties(const XmlCursor &element, PropertyManager &manager, const PropertyTable &properties,
                       unsigned int version)
{
    // What is missing is missing there.
    element.MarkKnown();
    for (const PropertyRow &property : properties)
        if (property.since == 0)
            Require(manager, property);
    for (const PropertyRow &property : properties)
        if (property.since > version && !manager.HasProperty(property.name))
            Create(manager, property);
    for (const PropertyRow &property : properties)
        if (property.since > 0)
            Require(manager, property);
    if (LoadContext::Current())
        for (const PropertyRow &property : properties)
            if (manager.StaticValue(property.name).which() != property.value.which())
                TellLoad(LoadEntry::Severity::Warning, element,
                         NarrowString("the property ") + property.name +
                             " has a value of another type than it should");
}

} // namespace marlet::project
