#pragma once

#include <marlet/plugins/AbstractPlugin.h>

namespace marlet::project
{

class EffectInstance;
struct FilterSurface;

/// A plug-in whose effect works on flat frames and may enlarge them.
class MARLET_EXPORT AbstractPlugin2D : public AbstractPlugin
{
public:
    ~AbstractPlugin2D() override;

    /// Stores by how many pixels the effect enlarges a frame of that size on each side. The unnamed arguments
    /// are handed through from the host that asks.
    virtual void FilterMargins(EffectInstance *effect, FilterSurface *surface, int width, int height, float,
                               float, bool, int, int *left, int *right, int *top, int *bottom) = 0;
    virtual void HostOperation8() = 0;
};

} // namespace marlet::project
