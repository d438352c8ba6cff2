#pragma once

#include <tests/support/PropertyValuePrinter.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>

#include <ostream>
#include <vector>

namespace marlet::test
{

enum NewKind { kAnimated, kFixed, kAlongPath };

/// How a class makes one of its properties.
struct NewProperty {
    project::NarrowString name;
    project::PropertyValue value;
    NewKind kind = kAnimated;

    bool operator==(const NewProperty &) const = default;
};

inline void PrintTo(const NewProperty &property, std::ostream *out)
{
    *out << property.name << " " << property.kind << " " << testing::PrintToString(property.value);
}

/// Those that stand there, in order, of which none was changed yet.
inline std::vector<NewProperty> PropertiesOf(const project::PropertyManager &properties)
{
    std::vector<NewProperty> found;
    for (const project::NarrowString &name : properties.PropertyNames()) {
        const char *key = name.c_str();
        const NewKind kind = properties.IsSpatial(key)    ? kAlongPath
                             : properties.CanAnimate(key) ? kAnimated
                                                          : kFixed;
        EXPECT_TRUE(properties.IsStatic(key)) << name;
        EXPECT_EQ(properties.StaticValue(key), properties.DefaultValue(key)) << name;
        EXPECT_TRUE(kind != kAlongPath || properties.CanAnimate(key)) << name;
        found.push_back({name, properties.DefaultValue(key), kind});
    }
    return found;
}

} // namespace marlet::test
