#include "ToolPlugin.h"

#include <marlet/plugins/EffectInstance.h>

#include <algorithm>
#include <cmath>

namespace marlet::tool
{

using namespace project;

void FilterPlugin::FilterMargins(EffectInstance *effect, FilterSurface *, int, int, float scale, float, bool,
                                 int time, int *left, int *right, int *top, int *bottom)
{
    const Margins margins = MarginsAtTime(std::as_const(*effect).Properties(), time);
    const auto scaled = [scale](int margin) { return Pixels(static_cast<float>(margin) * scale); };
    *left = scaled(margins.left);
    *right = scaled(margins.right);
    *top = scaled(margins.top);
    *bottom = scaled(margins.bottom);
}

FilterPlugin::Margins FilterPlugin::MarginsAtTime(const PropertyManager &, int) const
{
    return {};
}

float FilterPlugin::FloatAtTime(const PropertyManager &properties, const char *name, int time) const
{
    const PropertyValue value = properties.ValueAtTime(name, time);
    const float *number = boost::get<float>(&value);
    return number ? *number : boost::get<float>(Properties().DefaultValue(name));
}

int FilterPlugin::Pixels(float length)
{
    constexpr float kMost = 16384;
    // This way round a NaN is no length.
    return length > 0 ? static_cast<int>(std::ceil(std::min(length, kMost))) : 0;
}

} // namespace marlet::tool
