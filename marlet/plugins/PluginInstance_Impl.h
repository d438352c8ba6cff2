#pragma once

#include <marlet/animation/PropertyManager.h>
#include <marlet/foundation/xml/KeptXml.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/plugins/AbstractPluginInstance.h>
#include <marlet/plugins/EffectsHelper.h>

#include <optional>

namespace marlet::project
{

constexpr unsigned int kInstanceVersion = 2;
/// The element of an instance's private data.
constexpr char kInstanceBytes[] = "InstanceBytes";

/// What effects and transitions hold alike, and how they stand in the file. What is handed to the plug-in is
/// the instance itself, which knows nothing of this record's base.
struct PluginInstance_Impl {
    using UIState = AbstractPluginInstance::UIState;

    /// A new instance, as the plug-in has it by default.
    /// @throws std::invalid_argument if there is no plug-in
    explicit PluginInstance_Impl(const std::shared_ptr<AbstractPlugin> &ofPlugin);
    PluginInstance_Impl(const PluginInstance_Impl &other) = default;
    PluginInstance_Impl &operator=(const PluginInstance_Impl &) = delete;
    virtual ~PluginInstance_Impl();

    virtual std::unique_ptr<PluginInstance_Impl> Clone() const = 0;
    virtual const char *Tag() const = 0;
    /// What messages call the instance.
    virtual NarrowString Description() const = 0;
    /// The children of the element up to "PropertyManager".
    virtual void WriteHead(XmlWriter &writer, const AbstractPlugin &ofPlugin) const = 0;
    virtual void ReadHead(const XmlCursor &element) = 0;

    /// @throws std::logic_error if the plug-in is gone
    std::shared_ptr<AbstractPlugin> RequirePlugin() const;
    /// @throws std::runtime_error "Property not found in UI state hashmap"
    UIState &RequireUIState(const char *name);

    /// The plug-in is handed an instance that it may change; saving is const to everybody else.
    void Write(XmlWriter &writer, const AbstractPluginInstance &instance) const;
    void WriteStandIn(XmlWriter &writer) const;
    /// All that the library writes into the element, which is also what the plug-in is handed.
    void WriteChildren(XmlWriter &writer, const AbstractPlugin &ofPlugin) const;
    void Read(const XmlCursor &element, AbstractPluginInstance *instance);
    void KeepElement(const XmlCursor &element);
    /// Hands private data from an instance to its copy, as it is saved and read.
    void CopyPrivateData(AbstractPluginInstance *instance, AbstractPluginInstance *copy) const;
    /// What the plug-in saves of its private data. A stand-in's stay in what is kept.
    std::optional<std::vector<unsigned char>> PrivateBytes(AbstractPluginInstance *instance) const;
    void SetPrivateBytes(AbstractPluginInstance *instance,
                         const std::optional<std::vector<unsigned char>> &bytes) const;

    kytl::KyID id = kytl::KyID::Generate();
    kytl::KyID pluginID;
    std::weak_ptr<AbstractPlugin> plugin;
    std::shared_ptr<AbstractPlugin> standIn; ///< the plug-in, if it is one, which nobody else owns
    KeptXml kept;
    // Of the element, if the plug-in is a stand-in:
    std::shared_ptr<const NarrowString> source;
    std::size_t asRead = 0; ///< the hash of what the library writes as long as nothing has changed
    std::shared_ptr<PropertyManager> properties;
    EffectsHelper::UIStates uiStates;
    void *instanceData = nullptr;
    void *hostInstanceData = nullptr;
};

/// The children "PluginName" and "PluginVersion".
void WritePluginNameAndVersion(XmlWriter &writer, const AbstractPlugin &plugin);

/// The child "InstanceBytes" of an element of Qt's DOM.
void AppendInstanceBytes(const unsigned char *bytes, int size, void *document, void *element);

/// The version of the plug-in that saved an element, which the oldest elements do not tell.
/// @throws XmlParseException
std::optional<AbstractPlugin::VersionInfo> SavedPluginVersion(const XmlCursor &instance);

/// Whether what an element holds of plug-ins can be read. Without a manager it is dropped, unless the load
/// that goes on keeps what is unknown.
bool CanReadInstances(const AbstractPluginManager *manager, const XmlCursor &element);

/// The plug-in of the instance in an element, or, if the manager does not have it or there is none, and the
/// load that goes on keeps what is unknown, one that stands in for it.
/// @throws MissingPluginException; XmlParseException, std::runtime_error if the element does not name one
std::shared_ptr<AbstractPlugin> FindPlugin(AbstractPluginManager *manager, const XmlCursor &instance);

} // namespace marlet::project
