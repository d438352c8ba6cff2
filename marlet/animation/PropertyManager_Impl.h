#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/xml/KeptXml.h>

#include <unordered_map>

namespace marlet::project
{

/// An element with a value of a type that nobody knows, which is written as it came while what was read of it
/// stays as it is.
struct KeptProperty {
    NarrowString source;
    std::size_t asRead; ///< the hash of what would be written for it
};

struct Property {
    NarrowString name;
    PropertyValue defaultValue;
    PropertyValue staticValue;
    PropertyManager::Type type = PropertyManager::Type::Animatable;
    bool isSpatial = false;
    KeyFrameList keyFrames;
    NarrowString expression;
    std::shared_ptr<const KeptProperty> kept; ///< null for most
};

/// The properties in the order of their creation, each in a place of its own, and their names in a table
/// that looks into them.
struct PropertyManager_Impl {
    PropertyManager_Impl() = default;
    PropertyManager_Impl(const PropertyManager_Impl &other);
    PropertyManager_Impl &operator=(const PropertyManager_Impl &) = delete;

    /// @throws std::out_of_range
    std::size_t Find(const char *name) const;
    Property &At(const char *name) { return *properties[Find(name)]; }
    const Property &At(const char *name) const { return *properties[Find(name)]; }
    Property &At(PropertyManager::PropertyID id) { return *properties[Check(id)]; }
    const Property &At(PropertyManager::PropertyID id) const { return *properties[Check(id)]; }

    /// Appends a property unless there is one of that name; null then.
    Property *Create(std::string_view name, const PropertyValue &value, PropertyManager::Type type,
                     bool spatial);

    std::vector<ValuePtr<Property>> properties;
    std::unordered_map<std::string_view, std::size_t> positions;
    KeptXml kept;

private:
    std::size_t Check(PropertyManager::PropertyID id) const;
};

} // namespace marlet::project
