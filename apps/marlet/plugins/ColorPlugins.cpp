#include "Plugins.h"
#include "ToolPlugin.h"

namespace marlet::tool
{

using namespace project;

std::shared_ptr<AbstractPlugin> MakeColorBalance()
{
    PluginPanel panel;
    panel.ColorWheels(u"Wheels")
        .Group(u"Master")
        .Float("saturation", u"Saturation", 100, {0, 200, 1, u"%"})
        .Float("mix", u"Mix with Original", 100, {0, 100, 0, u"%"})
        .Check("keepLuminance", u"Keep Luminance", true);
    const PluginIdentity identity{kColorBalanceID, u"Colour Balance", {1, 0, 3, 0}};
    return std::make_shared<FilterPlugin>(identity, panel);
}

std::shared_ptr<AbstractPlugin> MakeLevels()
{
    PluginPanel panel;
    panel.Histogram("channel", u"Levels").Check("clampOutput", u"Clamp Output", true);
    const PluginIdentity identity{kLevelsID, u"Levels", {2, 0, 0, 0}};
    return std::make_shared<FilterPlugin>(identity, panel);
}

} // namespace marlet::tool
