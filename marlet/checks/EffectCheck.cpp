#include <marlet/checks/EffectCheck.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/checks/PropertyCheck.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/EffectInstance.h>

#include <utility>

namespace marlet::project
{

namespace
{

NarrowString VersionText(const AbstractPlugin::VersionInfo &version)
{
    NarrowString text = std::to_string(version.major);
    for (const std::uint32_t part : {version.minor, version.revision, version.build})
        text += "." + std::to_string(part);
    return text;
}

/// A layer picker holds an ID, unless a file brought another type. Which IDs of a stand-in are those of
/// layers its plug-in alone knows.
void CheckLayerPickers(CheckScope &scope, const Place &place, const std::shared_ptr<EffectInstance> &effect,
                       const Findings::IDSet &layers)
{
    if (effect->IsStandIn())
        return;
    for (const NarrowString &name : effect->LayerPickerProperties()) {
        const auto *id =
            boost::get<kytl::KyID>(&std::as_const(*effect).Properties().StaticValue(name.c_str()));
        if (id && !id->IsNull() && !layers.contains(*id))
            scope.findings.AddDangling(Finding::Severity::Warning, Place(Place::kProperty, name, &place),
                                       "the layer", *id, "does not exist",
                                       {"clears the property", [effect, name](Project &) {
                                            effect->Properties().StaticValue(name.c_str()) = kytl::KyID();
                                        }});
    }
}

} // namespace

void CheckEffects(CheckScope &scope, const Place &holderPlace,
                  const kytl::KyList<std::shared_ptr<EffectInstance>, std::vector> &effects,
                  const EffectHolder &holder)
{
    Findings::IDSet seen;
    for (const std::shared_ptr<EffectInstance> &effect : effects) {
        if (!effect)
            continue;
        const Place place("effect", effect->Name(), effect->ID(), &holderPlace);
        scope.findings.CheckID(place, effect->ID(), seen);
        scope.findings.CheckHolder(place, effect->ParentID(), holder.id,
                                   [effect, id = holder.id, timeline = holder.timeline](Project &) {
                                       effect->SetParent(id, timeline);
                                   });
        CheckPlugin(scope, place, effect);
        if (holder.layers)
            CheckLayerPickers(scope, place, effect, *holder.layers);
    }
}

void CheckPlugin(CheckScope &scope, const Place &place, const std::shared_ptr<PluginInstance> &instance)
{
    const std::shared_ptr<AbstractPlugin> plugin = instance->Plugin();
    if (!plugin)
        scope.findings.Warn(FindingKind::MissingPlugin, place,
                            "its plug-in " + instance->PluginID().ToNarrowString() + " has gone");
    else if (instance->IsStandIn())
        scope.findings.Warn(FindingKind::MissingPlugin, place,
                            "its plug-in \"" + ToUtf8(plugin->Name()) + "\", version " +
                                VersionText(plugin->Version()) + ", is not there; it is kept as it came");
    // What a stand-in keeps is for its plug-in to judge.
    const PropertyAccess access = [instance]() -> PropertyManager & { return instance->Properties(); };
    CheckProperties(scope.findings, place, std::as_const(*instance).Properties(),
                    {plugin ? &std::as_const(*plugin).Properties() : nullptr, scope.hasExpressionEngine},
                    instance->IsStandIn() ? PropertyAccess() : access);
}

} // namespace marlet::project
