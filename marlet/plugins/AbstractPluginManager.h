#pragma once

#include <marlet/foundation/Export.h>

#include <memory>

namespace kytl
{
struct KyID;
}

namespace marlet::project
{

class AbstractPlugin;
class Project;

/// The host's directory of plug-ins, which owns them. The library calls it on the thread that calls the
/// library.
class MARLET_EXPORT AbstractPluginManager
{
public:
    AbstractPluginManager() = default;
    AbstractPluginManager(const AbstractPluginManager &) = default;
    AbstractPluginManager &operator=(const AbstractPluginManager &) = default;
    virtual ~AbstractPluginManager();

    virtual void HostOperation1() = 0;
    /// The last step of Project::Create and Project::CreateFromXml: the project is complete.
    virtual void AttachProject(const std::shared_ptr<Project> &project) = 0;
    virtual void HostOperation2() = 0;
    /// The loaded plug-in with that ID, or null.
    virtual std::shared_ptr<AbstractPlugin> FindPlugin(const kytl::KyID &id) = 0;
    virtual void HostOperation3() = 0;
};

} // namespace marlet::project
