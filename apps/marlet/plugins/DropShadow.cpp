#include "Plugins.h"
#include "ToolPlugin.h"

#include <cmath>
#include <string_view>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr char kPointLight[] = "pointLight";

PluginPanel Panel()
{
    PluginPanel panel;
    panel.Color("color", u"Colour", {0, 0, 0, 1})
        .Float("opacity", u"Opacity", 60, {0, 100, 0, u"%"})
        .Angle("angle", u"Angle", 135, true)
        .Float("distance", u"Distance", 12, {0, 1000, 1, u"px"})
        .Float("softness", u"Softness", 10, {0, 500, 1, u"px"})
        .Group(u"Light")
        .Check(kPointLight, u"Light at a Point", false)
        // Both say nothing of parallel light, so they come into sight with the check box alone.
        .Point("light", u"Position of the Light", 50, -50, PluginPanel::Node::kHidden)
        .Float("spread", u"Spread", 20, {0, 100, 0, u"%"}, PluginPanel::Node::kHidden)
        .Check("shadowOnly", u"Shadow Only", false);
    return panel;
}

class DropShadow : public FilterPlugin
{
public:
    DropShadow() : FilterPlugin({kDropShadowID, u"Drop Shadow", {1, 1, 0, 0}}, Panel()) {}

    void PropertyChanged(Instance *instance, const char *name) override
    {
        if (std::string_view(name) != kPointLight)
            return;
        const bool visible = Static<bool>(std::as_const(*instance).Properties(), kPointLight);
        instance->SetPropertyUIState("light", {visible});
        instance->SetPropertyUIState("spread", {visible});
    }

protected:
    /// The angle runs clockwise from straight up.
    Margins MarginsAtTime(const PropertyManager &properties, int time) const override
    {
        constexpr float kRadians = 3.14159265f / 180;
        const float angle = FloatAtTime(properties, "angle", time) * kRadians;
        const float distance = FloatAtTime(properties, "distance", time);
        const float softness = FloatAtTime(properties, "softness", time);
        const float right = distance * std::sin(angle);
        const float down = -distance * std::cos(angle);
        return {Pixels(softness - right), Pixels(softness + right), Pixels(softness - down),
                Pixels(softness + down)};
    }
};

} // namespace

std::shared_ptr<AbstractPlugin> MakeDropShadow()
{
    return std::make_shared<DropShadow>();
}

} // namespace marlet::tool
