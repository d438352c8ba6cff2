#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/foundation/KyColorRGBA.h>

#include <QColor>

#include <algorithm>
#include <cmath>

namespace marlet::tool
{

// What is drawn must be sound, whatever a file holds: a property that is missing, of another type or no
// number.

template <class T>
T ValueOr(const project::PropertyManager &properties, const char *name, int time, const T &otherwise)
{
    if (!properties.HasProperty(name))
        return otherwise;
    const project::PropertyValue value = properties.ValueAtTime(name, time);
    const T *found = boost::get<T>(&value);
    return found ? *found : otherwise;
}

inline float NumberOr(const project::PropertyManager &properties, const char *name, int time, float otherwise)
{
    const float number = ValueOr(properties, name, time, otherwise);
    return std::isfinite(number) ? number : otherwise;
}

inline QColor ToQColor(const kytl::KyColorRGBA_32f &color)
{
    const auto level = [](float value) { return std::isfinite(value) ? std::clamp(value, 0.f, 1.f) : 0.f; };
    return QColor::fromRgbF(level(color.R), level(color.G), level(color.B), level(color.A));
}

} // namespace marlet::tool
