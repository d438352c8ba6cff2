#include "Plugins.h"
#include "ToolPlugin.h"

namespace marlet::tool
{

using namespace project;

namespace
{

enum Direction { kBoth, kHorizontal, kVertical };

PluginPanel Panel()
{
    PluginPanel panel;
    panel.Float("radius", u"Radius", 8, {0, 500, 1, u"px"})
        .Menu("direction", u"Direction", kBoth,
              {{u"Both", kBoth}, {u"Horizontal", kHorizontal}, {u"Vertical", kVertical}})
        .Check("repeatEdges", u"Repeat Edge Pixels", false)
        .Int("passes", u"Passes", 1, {1, 5, u""});
    return panel;
}

class GaussianBlur : public FilterPlugin
{
public:
    GaussianBlur() : FilterPlugin({kGaussianBlurID, u"Gaussian Blur", {1, 2, 0, 0}}, Panel()) {}

protected:
    /// A frame whose edge pixels go on for ever does not grow.
    Margins MarginsAtTime(const PropertyManager &properties, int time) const override
    {
        if (Static<bool>(properties, "repeatEdges"))
            return {};
        const int margin = Pixels(FloatAtTime(properties, "radius", time));
        const int direction = Static<int>(properties, "direction");
        const int horizontal = direction == kVertical ? 0 : margin;
        const int vertical = direction == kHorizontal ? 0 : margin;
        return {horizontal, horizontal, vertical, vertical};
    }
};

} // namespace

std::shared_ptr<AbstractPlugin> MakeGaussianBlur()
{
    return std::make_shared<GaussianBlur>();
}

} // namespace marlet::tool
