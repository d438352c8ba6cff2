#include "Filters.h"

#include "FilterInput.h"
#include "plugins/Plugins.h"

#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/FilterSurface.h>

#include <QPainter>

#include <algorithm>
#include <cmath>

namespace marlet::tool
{

using namespace project;

namespace
{

struct Margins {
    int left = 0;
    int right = 0;
    int top = 0;
    int bottom = 0;
};

Margins MarginsOf(AbstractPlugin2D &plugin, EffectInstance &effect, const QSize &size, int time)
{
    FilterSurface frame;
    frame.width = frame.textureWidth = size.width();
    frame.height = frame.textureHeight = size.height();
    Margins margins;
    plugin.FilterMargins(&effect, &frame, size.width(), size.height(), 1, 1, false, time, &margins.left,
                         &margins.right, &margins.top, &margins.bottom);
    // A preview has no use for frames that no memory holds.
    constexpr int kMost = 2048;
    for (int Margins::*side : {&Margins::left, &Margins::right, &Margins::top, &Margins::bottom})
        margins.*side = std::clamp(margins.*side, 0, kMost);
    return margins;
}

void Enlarge(Surface &surface, const Margins &margins)
{
    if (margins.left + margins.right + margins.top + margins.bottom == 0)
        return;
    const QSize size =
        surface.picture.size() + QSize(margins.left + margins.right, margins.top + margins.bottom);
    QImage larger(size, QImage::Format_ARGB32_Premultiplied);
    larger.fill(Qt::transparent);
    QPainter(&larger).drawImage(margins.left, margins.top, surface.picture);
    surface.picture = std::move(larger);
    surface.corner += QPoint(margins.left, margins.top);
}

constexpr struct {
    const kytl::KyID &plugin;
    void (*render)(Surface &, const FilterInput &);
} kRenderers[] = {{kGaussianBlurID, RenderBlur},
                  {kDropShadowID, RenderDropShadow},
                  {kDisplacementID, RenderDisplacement},
                  {kColorBalanceID, RenderColorBalance},
                  {kLevelsID, RenderLevels}};

} // namespace

float FilterInput::Number(const char *name) const
{
    const float number = Value<float>(name);
    return std::isfinite(number) ? number : 0;
}

void ApplyEffects(Surface &surface, const kytl::KyList<std::shared_ptr<EffectInstance>, std::vector> &effects,
                  int time, const LayerPictures &layers)
{
    for (const std::shared_ptr<EffectInstance> &effect : effects) {
        const auto plugin = std::dynamic_pointer_cast<AbstractPlugin2D>(effect->Plugin());
        if (!plugin || !effect->Enabled() || surface.picture.isNull())
            continue;
        const auto *renderer =
            std::find_if(std::begin(kRenderers), std::end(kRenderers),
                         [&](const auto &candidate) { return candidate.plugin == effect->PluginID(); });
        if (renderer == std::end(kRenderers))
            continue;
        Enlarge(surface, MarginsOf(*plugin, *effect, surface.picture.size(), time));
        renderer->render(surface, {*effect, time, layers});
    }
}

} // namespace marlet::tool
