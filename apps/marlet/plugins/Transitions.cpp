#include "Plugins.h"
#include "ToolPlugin.h"

namespace marlet::tool
{

using namespace project;

std::shared_ptr<AbstractPlugin> MakeCrossDissolve()
{
    enum Curve { kStraight, kEased, kFilm };
    PluginPanel panel;
    panel.Menu("curve", u"Curve", kStraight, {{u"Straight", kStraight}, {u"Eased", kEased}, {u"Film", kFilm}})
        .Int("dither", u"Dither", 0, {0, 16, u"levels"});
    const PluginIdentity identity{kCrossDissolveID, u"Cross Dissolve", {1, 0, 0, 0}};
    return std::make_shared<TransitionPlugin>(identity, panel);
}

std::shared_ptr<AbstractPlugin> MakeWipe()
{
    enum Shape { kLinear, kClock, kIris };
    PluginPanel panel;
    panel.Menu("shape", u"Shape", kLinear, {{u"Linear", kLinear}, {u"Clock", kClock}, {u"Iris", kIris}})
        .Angle("angle", u"Angle", 90, false)
        .Point("center", u"Centre", 50, 50)
        .Group(u"Edge")
        .Float("feather", u"Feather", 0, {0, 500, 1, u"px"})
        .Float("border", u"Border", 0, {0, 100, 1, u"px"})
        .Color("borderColor", u"Border Colour", {1, 1, 1, 1});
    const PluginIdentity identity{kWipeID, u"Wipe", {1, 1, 0, 0}};
    return std::make_shared<TransitionPlugin>(identity, panel);
}

} // namespace marlet::tool
