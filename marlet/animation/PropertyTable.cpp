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

/// The element of the properties in that of a class, or of its base; the class's own without one.
XmlCursor ManagerIn(const XmlCursor &element)
{
    constexpr char kManager[] = "PropertyManager";
    const XmlCursor own = element.Find(kManager);
    const XmlCursor manager = own.IsNull() ? element.Find("LayerBase").Find(kManager) : own;
    return manager.IsNull() ? element : manager;
}

void TellOfOddities(const PropertyManager &manager, const PropertyRow &property, const XmlCursor &element)
{
    const char *const name = property.name;
    const NarrowString start = NarrowString("the property ") + name;
    if (manager.StaticValue(name).which() != property.value.which())
        TellLoad(LoadEntry::Severity::Warning, element,
                 start + " has a value of another type than it should");
    const bool canAnimate = property.type == PropertyManager::Type::Animatable;
    if (manager.CanAnimate(name) != canAnimate)
        TellLoad(LoadEntry::Severity::Warning, element,
                 start + (canAnimate ? " is not to be animated here, though it could be"
                                     : " is to be animated here, though it should not be"));
    if (manager.IsSpatial(name) != property.spatial)
        TellLoad(LoadEntry::Severity::Warning, element,
                 start + (property.spatial ? " has no path in space here, though it should have"
                                           : " has a path in space here, though it should have none"));
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
    const XmlCursor managerElement = ManagerIn(element);
    managerElement.MarkKnown();
    for (const PropertyRow &property : properties)
        if (property.since == 0)
            Require(manager, property);
    for (const PropertyRow &property : properties)
        if (property.since > version && !manager.HasProperty(property.name)) {
            TellLoad(LoadEntry::Severity::Note, managerElement,
                     NarrowString("the property ") + property.name +
                         ", which is younger, is not there; it is that of a new object");
            Create(manager, property);
        }
    for (const PropertyRow &property : properties)
        if (property.since > 0)
            Require(manager, property);
    if (LoadContext::Current())
        for (const PropertyRow &property : properties)
            TellOfOddities(manager, property, managerElement.Find(property.name));
}

} // namespace marlet::project
