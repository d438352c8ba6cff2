#include <marlet/plugins/PluginInstance_Impl.h>

#include <stdexcept>

namespace marlet::project
{

namespace
{

const std::shared_ptr<AbstractPlugin> &Require(const std::shared_ptr<AbstractPlugin> &plugin)
{
    if (!plugin)
        throw std::invalid_argument("An instance of a plug-in needs a plug-in");
    return plugin;
}

template <class UIStates> auto &UIStateOf(UIStates &states, const char *name)
{
    const auto found = states.find(name != nullptr ? name : "");
    if (found == states.end())
        throw std::runtime_error("Property not found in UI state hashmap");
    return found->second;
}

} // namespace

PluginInstance_Impl::PluginInstance_Impl(const std::shared_ptr<AbstractPlugin> &ofPlugin)
    : pluginID(Require(ofPlugin)->ID()),
      plugin(ofPlugin),
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

const PluginInstance_Impl::UIState &PluginInstance_Impl::RequireUIState(const char *name) const
{
    return UIStateOf(uiStates, name);
}

void PluginInstance_Impl::SetUIState(const char *name, const UIState &state)
{
    UIStateOf(uiStates, name) = state;
}

void PluginInstance_Impl::AnnounceEnd(AbstractPluginInstance *instance) const noexcept
{
    try {
        if (const std::shared_ptr<AbstractPlugin> locked = plugin.lock())
            locked->InstanceDestroyed(instance);
    } catch (...) { // nobody is left to tell
    }
}

} // namespace marlet::project
