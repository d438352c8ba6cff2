#include <marlet/plugins/PluginInstance_Impl.h>

#include <marlet/foundation/Arguments.h>

#include <stdexcept>

namespace marlet::project
{

namespace
{

const std::shared_ptr<AbstractPlugin> &Required(const std::shared_ptr<AbstractPlugin> &plugin)
{
    Require(plugin, "plug-in");
    return plugin;
}

} // namespace

PluginInstance_Impl::PluginInstance_Impl(const std::shared_ptr<AbstractPlugin> &ofPlugin)
    : pluginID(Required(ofPlugin)->ID()),
      plugin(ofPlugin),
      standIn(ofPlugin->Kind() == AbstractPlugin::kStandIn ? ofPlugin : nullptr),
      properties(PropertyManager::Copy(ofPlugin->Properties())),
      uiStates(EffectsHelper::CreateUIState(ofPlugin))
{
}

PluginInstance_Impl::~PluginInstance_Impl() = default;

std::shared_ptr<AbstractPlugin> PluginInstance_Impl::RequirePlugin() const
{
    std::shared_ptr<AbstractPlugin> locked = plugin.lock();
    if (!locked)
        throw std::logic_error("The plug-in of " + Description() + " is gone");
    return locked;
}

PluginInstance_Impl::UIState &PluginInstance_Impl::RequireUIState(const char *name)
{
    const auto found = uiStates.find(name != nullptr ? name : "");
    if (found == uiStates.end())
        throw std::runtime_error("Property not found in UI state hashmap");
    return found->second;
}

} // namespace marlet::project
