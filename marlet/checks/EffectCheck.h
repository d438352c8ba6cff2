#pragma once

#include <marlet/checks/CheckScope.h>
#include <marlet/foundation/KyList.h>

namespace marlet::project
{

class EffectInstance;
class PluginInstance;

/// Of the holder of effects, and of the composition or sequence of that.
struct EffectHolder {
    const kytl::KyID &id;
    const kytl::KyID &timeline;
    /// The layers that an effect may name; null if it may name none, which is not looked at.
    const Findings::IDSet *layers = nullptr;
};

void CheckEffects(CheckScope &scope, const Place &place,
                  const kytl::KyList<std::shared_ptr<EffectInstance>, std::vector> &effects,
                  const EffectHolder &holder);

/// The plug-in and the properties of an effect or a transition.
void CheckPlugin(CheckScope &scope, const Place &place, const std::shared_ptr<PluginInstance> &instance);

} // namespace marlet::project
