#include "PythonPlugin.h"

#include "Errors.h"
#include "Values.h"

#include <marlet/plugins/PluginUICheckBox.h>
#include <marlet/plugins/PluginUIColorPicker.h>
#include <marlet/plugins/PluginUILayerPicker.h>
#include <marlet/plugins/PluginUINode.h>
#include <marlet/plugins/PluginUIPoint.h>
#include <marlet/plugins/PluginUISliderFloat.h>
#include <marlet/plugins/PluginUISliderInt.h>

#include <boost/variant/apply_visitor.hpp>

#include <string>

namespace marlet::python
{

namespace
{

/// Calls a method of the plug-in with a view of an instance, which ends with the call.
template <class... Arguments>
py::object Call(const py::object &plugin, const char *method, AbstractPluginInstance &instance,
                const Arguments &...arguments)
{
    const auto view = std::make_shared<InstanceView>(instance);
    struct Ending {
        InstanceView &view;
        ~Ending() { view.End(); }
    } const ending{*view};
    return plugin.attr(method)(view, arguments...);
}

PropertyValue DefaultFrom(const std::string &name, const py::handle &value)
{
    if (py::isinstance<py::bool_>(value))
        return py::cast<bool>(value);
    if (py::isinstance<py::int_>(value))
        return py::cast<int>(value);
    if (py::isinstance<py::float_>(value))
        return py::cast<float>(value);
    if (value.is_none())
        return kytl::KyID{};
    if (py::isinstance<py::sequence>(value) && !py::isinstance<py::str>(value)) {
        const auto parts = py::cast<std::vector<float>>(value);
        if (parts.size() == 2)
            return kytl::matl::KyPoint<2, float>{parts[0], parts[1]};
        if (parts.size() == 3)
            return kytl::matl::KyPoint<3, float>{parts[0], parts[1], parts[2]};
        if (parts.size() == 4)
            return kytl::KyColorRGBA_32f{parts[0], parts[1], parts[2], parts[3]};
    }
    throw py::type_error("The parameter '" + name +
                         "' has to begin as a number, a bool, None for a layer, or 2, 3 or 4 numbers");
}

/// The control of a parameter. Hosts show it, and references to layers are found by it.
struct ControlMaker {
    using Node = std::shared_ptr<AbstractPluginUITreeNode>;

    const Node &panel;
    const std::string &name;

    Node operator()(bool) const
    {
        return std::make_shared<PluginUICheckBox>(panel, Label(), name.c_str(), 0);
    }
    Node operator()(int) const
    {
        return std::make_shared<PluginUISliderInt>(panel, Label(), u"", name.c_str(), 0, 0, 100);
    }
    Node operator()(const kytl::KyID &) const
    {
        return std::make_shared<PluginUILayerPicker>(panel, Label(), name.c_str(), 0);
    }
    Node operator()(const kytl::KyColorRGBA_32f &) const
    {
        return std::make_shared<PluginUIColorPicker>(panel, Label(), name.c_str(), 0);
    }
    Node operator()(float) const
    {
        return std::make_shared<PluginUISliderFloat>(panel, Label(), u"", name.c_str(), 0, 0.f, 100.f, 2);
    }
    template <class Point> Node operator()(const Point &) const
    {
        return std::make_shared<PluginUIPoint>(panel, Label(), name.c_str(), 0);
    }

    WideString Label() const { return FromUtf8(name); }
};

void AddParameters(PropertyManager &properties, const std::shared_ptr<AbstractPluginUITreeNode> &panel,
                   const py::object &plugin)
{
    for (const auto &[key, value] : py::dict(plugin.attr("parameters"))) {
        const auto name = py::cast<std::string>(key);
        const bool animates = !py::isinstance<py::bool_>(value) && !value.is_none();
        const auto type = animates ? PropertyManager::Type::Animatable : PropertyManager::Type::NotAnimatable;
        const PropertyValue beginning = DefaultFrom(name, value);
        if (properties.CreateProperty(name.c_str(), beginning, type, nullptr) != PropertyManager::kCreated)
            throw py::value_error("'" + name + "' is no name for a parameter");
        panel->ChildNodes().Add(boost::apply_visitor(ControlMaker{panel, name}, beginning));
    }
}

AbstractPlugin::VersionInfo VersionFrom(const py::object &version)
{
    AbstractPlugin::VersionInfo result;
    std::uint32_t *const parts[] = {&result.major, &result.minor, &result.revision, &result.build};
    const py::sequence given(version);
    if (given.size() > 4)
        throw py::value_error("A version has at most four numbers");
    for (std::size_t i = 0; i < given.size(); ++i)
        *parts[i] = py::cast<std::uint32_t>(given[i]);
    return result;
}

} // namespace

AbstractPluginInstance &InstanceView::Get() const
{
    if (!instance_)
        throw Failure("GoneError", "The instance was lent to the plug-in for the length of a call");
    return *instance_;
}

PluginFacts::PluginFacts(const py::object &plugin)
    : id(ToID(py::cast<std::string>(plugin.attr("id")))),
      name(py::cast<WideString>(plugin.attr("name"))),
      version(VersionFrom(plugin.attr("version"))),
      properties(PropertyManager::Create()),
      panel(PluginUINode::CreateTreeRoot()),
      object(plugin)
{
    AddParameters(*properties, panel, plugin);
}

PluginFacts::~PluginFacts()
{
    const py::gil_scoped_acquire acquire;
    object.release().dec_ref();
}

py::object StateOf(const AbstractPluginInstance &instance)
{
    auto *const state = static_cast<PyObject *>(instance.InstanceData());
    return state ? py::reinterpret_borrow<py::object>(state) : py::none();
}

void SetState(AbstractPluginInstance &instance, const py::object &state)
{
    auto *const before = static_cast<PyObject *>(instance.InstanceData());
    instance.SetInstanceData(state.is_none() ? nullptr : py::object(state).release().ptr());
    py::handle(before).dec_ref();
}

template <class Interface> void PythonPlugin<Interface>::InstanceCreated(Instance *instance)
{
    // A copy comes with the pointer of its source, which has a reference of its own.
    instance->SetInstanceData(nullptr);
    const py::gil_scoped_acquire acquire;
    Call(facts_.object, "created", *instance);
}

template <class Interface> void PythonPlugin<Interface>::InstanceDestroyed(Instance *instance)
{
    const py::gil_scoped_acquire acquire;
    const struct Clearing {
        Instance &instance;
        ~Clearing() { SetState(instance, py::none()); }
    } clearing{*instance};
    Call(facts_.object, "destroyed", *instance);
}

template <class Interface>
void PythonPlugin<Interface>::SerializeInstance(Instance *instance, void *document, void *element)
{
    const py::gil_scoped_acquire acquire;
    const py::object saved = Call(facts_.object, "save", *instance);
    if (saved.is_none())
        return;
    std::string bytes = py::cast<py::bytes>(saved);
    instance->SerializeInstanceDataBytes(reinterpret_cast<unsigned char *>(bytes.data()),
                                         static_cast<int>(bytes.size()), document, element);
}

template <class Interface>
void PythonPlugin<Interface>::DeserializeInstance(Instance *instance, unsigned char *bytes, int size)
{
    const py::gil_scoped_acquire acquire;
    const py::bytes data(reinterpret_cast<const char *>(bytes), static_cast<std::size_t>(size));
    Call(facts_.object, "restore", *instance, data);
}

template <class Interface> void PythonPlugin<Interface>::PropertyChanged(Instance *instance, const char *name)
{
    const py::gil_scoped_acquire acquire;
    Call(facts_.object, "property_changed", *instance, py::str(name));
}

template class PythonPlugin<AbstractPlugin>;
template class PythonPlugin<AbstractPlugin2D>;

void PythonEffect::FilterMargins(EffectInstance *effect, FilterSurface *, int width, int height, float scale,
                                 float, bool, int time, int *left, int *right, int *top, int *bottom)
{
    const py::gil_scoped_acquire acquire;
    const py::object margins = Call(facts_.object, "margins", *effect, width, height, scale, time);
    const auto [onLeft, onRight, onTop, onBottom] = py::cast<std::tuple<int, int, int, int>>(margins);
    *left = onLeft;
    *right = onRight;
    *top = onTop;
    *bottom = onBottom;
}

void PythonPlugins::Add(const py::object &plugin)
{
    const auto kind = py::cast<std::string>(plugin.attr("kind"));
    std::shared_ptr<AbstractPlugin> added;
    if (kind == "effect")
        added = std::make_shared<PythonEffect>(plugin);
    else if (kind == "transition")
        added = std::make_shared<PythonTransition>(plugin);
    else
        throw py::value_error("'" + kind + "' is none of 'effect', 'transition'");
    if (FindPlugin(added->ID()))
        throw py::value_error("There is a plug-in with that ID already");
    plugins_.push_back(added);
    objects_.push_back(plugin);
}

std::shared_ptr<AbstractPlugin> PythonPlugins::FindPlugin(const kytl::KyID &id)
{
    for (const auto &plugin : plugins_)
        if (plugin->ID() == id)
            return plugin;
    return nullptr;
}

} // namespace marlet::python
