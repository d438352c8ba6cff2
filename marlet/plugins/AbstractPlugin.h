#pragma once

#include <marlet/foundation/KyID.h>
#include <marlet/foundation/Strings.h>

#include <compare>
#include <cstdint>
#include <memory>

namespace marlet::project
{

class AbstractPluginInstance;
class AbstractPluginUITreeNode;
class PropertyManager;

/// One loaded plug-in, implemented by the host. The library calls it on the thread that calls the library.
///
/// For one instance the order of calls is: InstanceCreated, any number of PropertyChanged and
/// SerializeInstance, at most one DeserializeInstance, InstanceDestroyed. An undo or a redo that puts back an
/// instance adds one DeserializeInstance each. A plug-in must outlive the saving of its instances.
class MARLET_EXPORT AbstractPlugin
{
public:
    /// The kind of an AbstractPlugin2D; the library tests for no other.
    static constexpr int kFilter2D = 0;
    /// The kind of the library's own plug-in that takes the place of one that is missing. Hosts have none.
    static constexpr int kStandIn = -1;

    /// Compared field by field, in this order.
    struct VersionInfo {
        std::uint32_t major = 0;
        std::uint32_t minor = 0;
        std::uint32_t revision = 0;
        std::uint32_t build = 0;

        auto operator<=>(const VersionInfo &other) const = default;
    };

    AbstractPlugin() = default;
    AbstractPlugin(const AbstractPlugin &) = default;
    AbstractPlugin &operator=(const AbstractPlugin &) = default;
    virtual ~AbstractPlugin();

    /// The plug-in's stable identity, which stands in files.
    virtual const kytl::KyID &ID() const = 0;
    virtual int Kind() const = 0;
    virtual void HostOperation1() = 0;
    /// The display name, which stands in files and messages.
    virtual const WideString &Name() const = 0;
    virtual void HostOperation2() = 0;
    virtual void HostOperation3() = 0;
    virtual void HostOperation4() = 0;
    virtual const VersionInfo &Version() const = 0;
    virtual void HostOperation5() = 0;
    /// The template: each new instance starts with a copy of it.
    virtual const PropertyManager &Properties() const = 0;
    virtual void HostOperation6() = 0;
    /// The root of the description of the plug-in's panel.
    virtual const std::shared_ptr<AbstractPluginUITreeNode> &UITree() const = 0;
    /// At the end of every constructor of an instance, before any data of a file arrive. A copy comes with
    /// the InstanceData of its source, which it must not share. What is set here stays for a new instance and
    /// for the copy of an effect; the copy of a transition has null again when this returns. So a plug-in
    /// that keeps something sets null here, and allocates when it first needs it.
    virtual void InstanceCreated(AbstractPluginInstance *instance) = 0;
    /// From the instance's destructor, before its data goes, if the plug-in still lives.
    virtual void InstanceDestroyed(AbstractPluginInstance *instance) = 0;
    /// When an instance is saved and when it is copied, as the last step. The document is a QDomDocument, the
    /// element its root, a QDomElement that holds all that the library writes of the instance,
    /// "PropertyManager" and "UIState" too. A plug-in with private data calls SerializeInstanceDataBytes on
    /// the instance with the two. Whatever else it adds, wherever it puts it, also attributes, is saved:
    /// children of the element stand behind the library's own, and what stands in "PropertyManager" has to be
    /// a property, since that is read as one.
    virtual void SerializeInstance(AbstractPluginInstance *instance, void *document, void *element) = 0;
    /// Last when an instance with private data is read or copied. InstanceData may be null then. When it is
    /// called by an undo or a redo, the instance has the data that the bytes are to replace, and no bytes
    /// stand for having none. The bytes are the library's, and stay for the length of the call.
    virtual void DeserializeInstance(AbstractPluginInstance *instance, unsigned char *bytes, int size) = 0;
    virtual void HostOperation7() = 0;
    virtual void PropertyChanged(AbstractPluginInstance *instance, const char *name) = 0;
};

} // namespace marlet::project
