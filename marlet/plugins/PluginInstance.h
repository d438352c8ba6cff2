#pragma once

#include <marlet/plugins/AbstractPluginInstance.h>

#include <optional>
#include <unordered_map>
#include <vector>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;
struct PluginInstance_Impl;

/// What effects and transitions have in common: a copy of the plug-in's properties, the state of its panel,
/// and the pointers of the plug-in and of the host. It owns its properties and refers to its plug-in weakly.
///
/// The plug-in hears of each instance: InstanceCreated at the end of its construction, before any data
/// arrive, InstanceDestroyed before its data goes. An exception of a plug-in reaches the caller and leaves
/// the document as it was; one out of InstanceDestroyed is dropped. Belongs to the thread that edits the
/// project.
class MARLET_EXPORT PluginInstance : public AbstractPluginInstance
{
public:
    PluginInstance &operator=(const PluginInstance &) = delete;
    ~PluginInstance() override;

    const kytl::KyID &ID() const override;
    const kytl::KyID &PluginID() const override;
    std::shared_ptr<AbstractPlugin> Plugin() const override;
    PropertyManager &Properties() override;
    const PropertyManager &Properties() const override;
    /// @throws std::runtime_error "Property not found in UI state hashmap"
    const UIState &PropertyUIState(const char *name) const override;
    /// @throws std::runtime_error "Property not found in UI state hashmap"
    void SetPropertyUIState(const char *name, const UIState &state) override;
    /// @throws std::logic_error if the plug-in is gone
    void NotifyPropertyChanged(const char *name) override;
    void *InstanceData() const override;
    void SetInstanceData(void *data) override;
    void *HostInstanceData() const override;
    void SetHostInstanceData(void *data) override;
    /// @throws std::logic_error if the plug-in is gone
    WideString Serialize() const override;
    void SerializeInstanceDataBytes(unsigned char *bytes, int size, void *document, void *element) override;

    /// Whether the plug-in is one of the library's own, which takes the place of one that the host does not
    /// have, or only in an older version. The instance is saved as it was read then, with what was changed.
    bool IsStandIn() const;

    // What an undo puts back beside properties.

    /// The states of the panel's controls, by the names of the properties.
    std::unordered_map<NarrowString, UIState> PanelStates() const;
    void SetPanelStates(const std::unordered_map<NarrowString, UIState> &states);
    /// What the plug-in saves of its private data; nothing if it saves none.
    /// @throws std::logic_error if the plug-in is gone
    std::optional<std::vector<unsigned char>> PrivateBytes() const;
    /// Hands them to the plug-in; an instance that is to have none is handed no bytes at all.
    /// @throws std::logic_error if the plug-in is gone
    void SetPrivateBytes(const std::optional<std::vector<unsigned char>> &bytes);

    /// The same as Properties.
    PropertyManager &Animation();
    const PropertyManager &Animation() const;

protected:
    explicit PluginInstance(std::unique_ptr<PluginInstance_Impl> impl);
    PluginInstance(const PluginInstance &other);

    /// The last step of the constructors of a class. A plug-in that throws is not told of the instance's end,
    /// since the destructor of that class does not run; whatever reads goes on from a finished instance,
    /// whose destructor runs.
    void AnnounceBeginning();
    /// The first step of its destructor. What the plug-in throws is dropped.
    void AnnounceEnd() noexcept;
    void Deserialize(const XmlCursor &element);
    /// Takes private data over from the source, as it is saved and read.
    void TakePrivateDataOf(PluginInstance &source);

    /// The record of the class, which is derived from this.
    std::unique_ptr<PluginInstance_Impl> impl_;

private:
    friend class EffectsHelper;

    void Serialize(XmlWriter &writer) const;
};

} // namespace marlet::project
