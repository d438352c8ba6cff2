#include "Bindings.h"
#include "Effects.h"
#include "Owners.h"
#include "PythonPlugin.h"
#include "Values.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/Transition.h>
#include <marlet/layers/AbstractLayer.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/Project.h>

namespace marlet::python
{

namespace
{

using Type = py::class_<InstanceHandle>;

void BindInstance(Type &type)
{
    BindIdentity<InstanceHandle>(type);
    BindFact<InstanceHandle>(
        type, "id", [](const PluginInstance &instance) { return instance.ID().ToNarrowString(); },
        "The text of its ID.");
    BindFact<InstanceHandle>(
        type, "plugin_id",
        [](const PluginInstance &instance) { return instance.PluginID().ToNarrowString(); },
        "The text of the ID of its plug-in.");
    BindFact<InstanceHandle>(
        type, "plugin_name",
        [](const PluginInstance &instance) -> std::optional<WideString> {
            const auto plugin = instance.Plugin();
            return plugin ? std::optional(plugin->Name()) : std::nullopt;
        },
        "The name of its plug-in, for one that is missing as the file has it.");
    BindFact<InstanceHandle>(
        type, "plugin_version",
        [](const PluginInstance &instance)
            -> std::optional<std::tuple<unsigned, unsigned, unsigned, unsigned>> {
            const auto plugin = instance.Plugin();
            if (!plugin)
                return std::nullopt;
            const auto &version = plugin->Version();
            return std::tuple(version.major, version.minor, version.revision, version.build);
        },
        "The version of its plug-in, for one that is missing as the file has it.");
    BindFact<InstanceHandle>(
        type, "is_stand_in", [](const PluginInstance &instance) { return instance.IsStandIn(); },
        "Whether its plug-in is missing: it does nothing, and all of it is kept and written again.");
    BindProperties<InstanceHandle>(type);
}

void BindPrivate(Type &type)
{
    type.def_property(
        "private_bytes",
        [](const InstanceHandle &instance) -> std::optional<py::bytes> {
            const auto bytes = instance.Get()->PrivateBytes();
            if (!bytes)
                return std::nullopt;
            return py::bytes(reinterpret_cast<const char *>(bytes->data()), bytes->size());
        },
        [](const InstanceHandle &instance, const std::optional<py::bytes> &bytes) {
            const auto changed = instance.Get();
            std::optional<std::vector<unsigned char>> data;
            if (bytes) {
                const std::string text = *bytes;
                data.emplace(text.begin(), text.end());
            }
            Edited(*instance.Owner(), u"Change private data", [&](Edit &edit) {
                edit.Touch(changed);
                changed->SetPrivateBytes(data);
            });
        },
        "What the plug-in saves beside its parameters, or None.");
}

/// Puts an effect of a plug-in onto a layer or an object, behind the others.
template <class Handle>
py::object AddEffect(const Handle &handle, const std::string &plugin, const std::optional<WideString> &name)
{
    const auto owner = handle.Get();
    const auto &manager = handle.InProject()->PluginManager();
    const auto found = manager ? manager->FindPlugin(ToID(plugin)) : nullptr;
    if (!found)
        throw Failure("OperationError", "There is no plug-in with the ID " + plugin);
    EffectList *effects = nullptr;
    kytl::KyID timeline;
    if constexpr (std::is_same_v<Handle, LayerHandle>) {
        effects = EffectsOf(*owner);
        timeline = owner->ParentCompositionID();
    } else {
        effects = &owner->Effects();
        timeline = owner->ParentSequenceID();
    }
    if (!effects || found->Kind() != AbstractPlugin::kFilter2D)
        throw Failure("OperationError",
                      effects ? "The plug-in is no effect" : "A layer of this class has no effects");
    return Edited(*handle.Owner(), u"Add effect", [&](Edit &edit) {
        const auto effect = EffectInstance::Create(found);
        if (name)
            effect->SetName(*name);
        effect->SetParent(owner->ID(), timeline);
        edit.Touch(owner);
        effects->Add(effect);
        return Show(handle, effect);
    });
}

template <class Handle> void RemoveEffect(const Handle &handle, const EffectHandle &effect)
{
    const auto owner = handle.Get();
    const auto removed = effect.Get();
    EffectList *effects = nullptr;
    if constexpr (std::is_same_v<Handle, LayerHandle>)
        effects = EffectsOf(*owner);
    else
        effects = &owner->Effects();
    if (!effects || !Lists(*effects, *removed))
        throw Failure("OperationError", "The effect is one of another object");
    Edited(*handle.Owner(), u"Remove effect", [&](Edit &edit) {
        edit.Touch(owner);
        std::erase(*effects, removed);
    });
}

} // namespace

py::object AddEffectTo(const LayerHandle &layer, const std::string &plugin,
                       const std::optional<WideString> &name)
{
    return AddEffect(layer, plugin, name);
}

py::object AddEffectTo(const ObjectHandle &object, const std::string &plugin,
                       const std::optional<WideString> &name)
{
    return AddEffect(object, plugin, name);
}

void RemoveEffectFrom(const LayerHandle &layer, const EffectHandle &effect)
{
    RemoveEffect(layer, effect);
}

void RemoveEffectFrom(const ObjectHandle &object, const EffectHandle &effect)
{
    RemoveEffect(object, effect);
}

void BindEffects(py::module_ &module)
{
    Type type(module, "PluginInstance", "One use of a plug-in, with the parameters of that as properties.");
    BindInstance(type);
    BindPrivate(type);

    py::class_<EffectHandle, InstanceHandle> effect(module, "Effect",
                                                    "An effect on a layer or an object of the sequence.");
    BindField<EffectHandle>(
        effect, "name", u"Rename effect", [](const EffectInstance &instance) { return instance.Name(); },
        [](EffectInstance &instance, const WideString &name) { instance.SetName(name); }, "Its name.");
    BindField<EffectHandle>(
        effect, "enabled", u"Switch effect",
        [](const EffectInstance &instance) { return instance.Enabled(); },
        [](EffectInstance &instance, bool enabled) { instance.SetEnabled(enabled); }, "Whether it acts.");

    py::class_<TransitionHandle, InstanceHandle> transition(
        module, "Transition", "A transition at the end of an object of the sequence, or between two.");
    BindFact<TransitionHandle>(
        transition, "length", [](const Transition &instance) { return instance.Length(); }, "In frames.");
}

} // namespace marlet::python
