#pragma once

#include "Filters.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/animation/PropertyValue.h>
#include <marlet/plugins/EffectInstance.h>

#include <utility>

namespace marlet::tool
{

/// An effect at a time, as the code that renders it reads it. A value of another type than the plug-in's own,
/// which a file may have brought, counts as the plug-in's default.
struct FilterInput {
    project::EffectInstance &effect;
    int time;
    const LayerPictures &layers;

    template <class T> T Value(const char *name) const
    {
        const project::PropertyManager &properties = std::as_const(effect).Properties();
        const project::PropertyValue value = properties.ValueAtTime(name, time);
        if (const T *found = boost::get<T>(&value))
            return *found;
        return boost::get<T>(properties.DefaultValue(name));
    }
    /// A number that is finite.
    float Number(const char *name) const;
};

// What each of the tool's effects does. The picture has its margins already.

void RenderBlur(Surface &surface, const FilterInput &input);
void RenderDropShadow(Surface &surface, const FilterInput &input);
void RenderDisplacement(Surface &surface, const FilterInput &input);
void RenderColorBalance(Surface &surface, const FilterInput &input);
void RenderLevels(Surface &surface, const FilterInput &input);

} // namespace marlet::tool
