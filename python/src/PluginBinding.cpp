#include "Bindings.h"
#include "PythonPlugin.h"
#include "Values.h"

#include <utility>

namespace marlet::python
{

namespace
{

using ViewPointer = std::shared_ptr<InstanceView>;

void BindView(py::module_ &module)
{
    py::class_<InstanceView, ViewPointer> type(module, "Instance",
                                               "One use of a plug-in, as the plug-in sees it. It is lent for "
                                               "the length of a call: keep what is needed in "
                                               "`state`, and not the instance.");
    type.def_property_readonly(
        "id", [](const InstanceView &view) { return view.Get().ID().ToNarrowString(); },
        "The text of its ID.");
    type.def_property(
        "state", [](const InstanceView &view) { return StateOf(view.Get()); },
        [](const InstanceView &view, const py::object &state) { SetState(view.Get(), state); },
        "What the plug-in keeps for the instance: any object, None at first. Plugin.save turns it into "
        "bytes.");
    type.def(
        "value",
        [](const InstanceView &view, const NarrowString &name, int time) {
            const PropertyManager &properties = std::as_const(view.Get()).Properties();
            if (!properties.HasProperty(name.c_str()))
                throw py::key_error(name);
            return ToPython(properties.ValueAtTime(name.c_str(), time));
        },
        py::arg("name"), py::arg("time") = 0, "The value of a parameter at a time in milliseconds.");
    type.def(
        "set_visible",
        [](const InstanceView &view, const NarrowString &name, bool visible) {
            view.Get().SetPropertyUIState(name.c_str(), {visible});
        },
        py::arg("name"), py::arg("visible"), "Shows or hides the control of a parameter.");
}

} // namespace

void BindPlugins(py::module_ &module)
{
    BindView(module);
    py::class_<PythonPlugins, std::shared_ptr<PythonPlugins>> type(
        module, "PluginManager",
        "The plug-ins of a script. They are handed to marlet.load and marlet.new with it.");
    type.def(py::init([](const py::iterable &plugins) {
                 auto manager = std::make_shared<PythonPlugins>();
                 for (const auto plugin : plugins)
                     manager->Add(py::reinterpret_borrow<py::object>(plugin));
                 return manager;
             }),
             py::arg("plugins") = py::tuple());
    type.def("register", &PythonPlugins::Add, py::arg("plugin"),
             "Adds a plug-in, an object of a class of marlet.Plugin.");
    type.def("__len__", [](const PythonPlugins &plugins) { return plugins.All().size(); });
    type.def("__iter__", [](const PythonPlugins &plugins) { return py::iter(py::cast(plugins.Objects())); });
    type.def(
        "find",
        [](PythonPlugins &plugins, const std::string &id) -> py::object {
            const kytl::KyID wanted = ToID(id);
            for (std::size_t i = 0; i < plugins.All().size(); ++i)
                if (plugins.All()[i]->ID() == wanted)
                    return plugins.Objects()[i];
            return py::none();
        },
        py::arg("id"), "The plug-in with that ID, or None.");
}

} // namespace marlet::python
