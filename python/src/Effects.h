#pragma once

#include "Handles.h"

#include <optional>

namespace marlet::python
{

// Effects that come onto layers and objects of the sequence and go from them, as edits.

/// Behind the others. @throws Failure OperationError if there is no such plug-in, or the class has no effects
py::object AddEffectTo(const LayerHandle &layer, const std::string &plugin,
                       const std::optional<WideString> &name);
py::object AddEffectTo(const ObjectHandle &object, const std::string &plugin,
                       const std::optional<WideString> &name);
/// @throws Failure OperationError if the effect is one of another object
void RemoveEffectFrom(const LayerHandle &layer, const EffectHandle &effect);
void RemoveEffectFrom(const ObjectHandle &object, const EffectHandle &effect);

template <class Handle, class Class> void BindEffectChanges(Class &type)
{
    type.def(
        "add_effect",
        [](const Handle &handle, const py::object &plugin, const std::optional<WideString> &name) {
            const py::object id = py::hasattr(plugin, "id") ? py::object(plugin.attr("id")) : plugin;
            return AddEffectTo(handle, py::cast<std::string>(id), name);
        },
        py::arg("plugin"), py::kw_only(), py::arg("name") = py::none(),
        "Adds an effect of a plug-in, or of the plug-in with an ID, behind the others, and returns it.");
    type.def(
        "remove_effect",
        [](const Handle &handle, const EffectHandle &effect) { RemoveEffectFrom(handle, effect); },
        py::arg("effect"), "Takes an effect away.");
}

} // namespace marlet::python
