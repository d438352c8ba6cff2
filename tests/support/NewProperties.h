#pragma once

#include <tests/support/PropertyValuePrinter.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>

#include <ostream>
#include <vector>

namespace marlet::test
{

/// How a class makes one of its properties.
struct NewProperty {
    project::NarrowString name;
    project::PropertyValue value;
    bool canAnimate;
    bool isSpatial = false;

    bool operator==(const NewProperty &) const = default;
};

inline void PrintTo(const NewProperty &property, std::ostream *out)
{
    *out << property.name << " " << testing::PrintToString(property.value)
         << (property.canAnimate ? " animates" : " stays") << (property.isSpatial ? " in space" : "");
}

/// Those that stand there, in order, of which none was changed yet.
inline std::vector<NewProperty> PropertiesOf(const project::PropertyManager &properties)
{
    std::vector<NewProperty> found;
    for (const project::NarrowString &name : properties.PropertyNames()) {
        const char *key = name.c_str();
        EXPECT_EQ(properties.StaticValue(key), properties.DefaultValue(key)) << name;
        found.push_back(
            {name, properties.DefaultValue(key), properties.CanAnimate(key), properties.IsSpatial(key)});
    }
    return found;
}

} // namespace marlet::test
