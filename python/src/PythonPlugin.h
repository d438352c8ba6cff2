#pragma once

#include "Common.h"

#include <marlet/animation/PropertyManager.h>
#include <marlet/plugins/AbstractPlugin2D.h>
#include <marlet/plugins/AbstractPluginManager.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/plugins/WithoutHostOperations.h>

#include <memory>
#include <vector>

namespace marlet::python
{

/// An instance as a plug-in that is written in Python sees it, for the length of a call.
class InstanceView
{
public:
    explicit InstanceView(AbstractPluginInstance &instance) : instance_(&instance) {}

    /// @throws Failure GoneError when the call is over
    AbstractPluginInstance &Get() const;
    void End() { instance_ = nullptr; }

private:
    AbstractPluginInstance *instance_;
};

/// What a plug-in in Python says of itself, read once.
struct PluginFacts {
    kytl::KyID id;
    WideString name;
    AbstractPlugin::VersionInfo version;
    std::shared_ptr<PropertyManager> properties;
    std::shared_ptr<AbstractPluginUITreeNode> panel;
    py::object object;

    /// @throws what Python raises, py::type_error, py::value_error
    explicit PluginFacts(const py::object &plugin);
    ~PluginFacts();
};

/// The state of an instance is a Python object, which starts as None. These take the interpreter's lock.
py::object StateOf(const AbstractPluginInstance &instance);
void SetState(AbstractPluginInstance &instance, const py::object &state);

/// A plug-in that is written in Python, for the library. Takes the interpreter's lock wherever it is called.
template <class Interface> class PythonPlugin : public WithoutHostOperations<Interface>
{
public:
    using Instance = AbstractPluginInstance;

    explicit PythonPlugin(const py::object &plugin) : facts_(plugin) {}

    const kytl::KyID &ID() const override { return facts_.id; }
    const WideString &Name() const override { return facts_.name; }
    const AbstractPlugin::VersionInfo &Version() const override { return facts_.version; }
    const PropertyManager &Properties() const override { return *facts_.properties; }
    const std::shared_ptr<AbstractPluginUITreeNode> &UITree() const override { return facts_.panel; }

    void InstanceCreated(Instance *instance) override;
    void InstanceDestroyed(Instance *instance) override;
    void SerializeInstance(Instance *instance, void *document, void *element) override;
    void DeserializeInstance(Instance *instance, unsigned char *bytes, int size) override;
    void PropertyChanged(Instance *instance, const char *name) override;

protected:
    PluginFacts facts_;
};

class PythonEffect final : public PythonPlugin<AbstractPlugin2D>
{
public:
    using PythonPlugin::PythonPlugin;

    int Kind() const override { return kFilter2D; }
    void FilterMargins(EffectInstance *effect, FilterSurface *surface, int width, int height, float scale,
                       float, bool, int time, int *left, int *right, int *top, int *bottom) override;
};

class PythonTransition final : public PythonPlugin<AbstractPlugin>
{
public:
    static constexpr int kTransition = 1;
    using PythonPlugin::PythonPlugin;

    int Kind() const override { return kTransition; }
};

/// The plug-ins that a script has, which live as long as this.
class PythonPlugins final : public WithoutHostOperations<AbstractPluginManager>
{
public:
    /// @throws py::value_error for an ID that is there
    void Add(const py::object &plugin);
    const std::vector<std::shared_ptr<AbstractPlugin>> &All() const { return plugins_; }
    const std::vector<py::object> &Objects() const { return objects_; }

    std::shared_ptr<AbstractPlugin> FindPlugin(const kytl::KyID &id) override;
    void AttachProject(const std::shared_ptr<Project> &) override {}

private:
    std::vector<std::shared_ptr<AbstractPlugin>> plugins_;
    std::vector<py::object> objects_;
};

} // namespace marlet::python
