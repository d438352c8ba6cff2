#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/EffectsHelper.h>

namespace marlet::project
{

struct EffectInstance_Impl {
    explicit EffectInstance_Impl(const std::shared_ptr<AbstractPlugin> &ofPlugin);
    EffectInstance_Impl(const EffectInstance_Impl &other) = default;
    EffectInstance_Impl &operator=(const EffectInstance_Impl &) = delete;

    /// @throws std::logic_error if the plug-in is gone
    std::shared_ptr<AbstractPlugin> RequirePlugin() const;

    kytl::KyID id = kytl::KyID::Generate();
    WideString name;
    kytl::KyID pluginID;
    std::weak_ptr<AbstractPlugin> plugin;
    std::shared_ptr<PropertyManager> properties;
    EffectsHelper::UIStates uiStates;
    kytl::KyID parentID;
    kytl::KyID parentTimelineID;
    bool enabled = true;
    void *instanceData = nullptr;
    void *hostInstanceData = nullptr;
};

} // namespace marlet::project
