#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginInstance.h>

#include <unordered_map>
#include <vector>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;
struct EffectInstance_Impl;

/// One use of an effect plug-in on a layer or a sequence object: a name, an on/off switch, a copy of the
/// plug-in's properties, and the state of its panel. It owns its properties and refers to its plug-in weakly.
///
/// The plug-in hears of each instance: InstanceCreated at the end of its construction, InstanceDestroyed
/// before its data goes. An exception of a plug-in reaches the caller and leaves the document as it was; one
/// out of InstanceDestroyed is dropped. Belongs to the thread that edits the project.
class MARLET_EXPORT EffectInstance : public AbstractPluginInstance
{
public:
    static std::shared_ptr<EffectInstance> Create(const std::shared_ptr<AbstractPlugin> &plugin);
    /// Reads an instance of that plug-in. If the map is not empty, references to layers whose IDs, in text
    /// form, are not among its keys are cleared.
    /// @throws XmlParseException, InvalidProjectVersionException
    /// @throws std::runtime_error if the text is of another plug-in, or an ID is malformed
    /// @throws InvalidPluginVersionException if a newer version of the plug-in saved it
    static std::shared_ptr<EffectInstance>
    CreateFromXml(const std::shared_ptr<AbstractPlugin> &plugin, const WideString &xml,
                  const std::unordered_map<NarrowString, bool> &validLayerIDs);
    /// A copy with a new ID, no parents, and properties and private data of its own. An empty pointer if the
    /// plug-in is gone.
    static std::shared_ptr<EffectInstance> Copy(const std::shared_ptr<EffectInstance> &source);
    EffectInstance &operator=(const EffectInstance &) = delete;
    ~EffectInstance() override;

    InstanceType Type() const override;
    const kytl::KyID &ID() const override;
    const kytl::KyID &PluginID() const override;
    std::shared_ptr<AbstractPlugin> Plugin() const override;
    PropertyManager &Properties() override;
    const PropertyManager &Properties() const override;
    /// @throws std::runtime_error "Property not found in UI state hashmap"
    const UIState &PropertyUIState(const char *name) const override;
    /// @throws std::runtime_error "Property not found in UI state hashmap"
    void SetPropertyUIState(const char *name, const UIState &state) override;
    void NotifyPropertyChanged(const char *name) override;
    void *InstanceData() const override;
    void SetInstanceData(void *data) override;
    void *HostInstanceData() const override;
    void SetHostInstanceData(void *data) override;
    /// @throws std::logic_error if the plug-in is gone
    WideString Serialize() const override;
    void SerializeInstanceDataBytes(unsigned char *bytes, int size, void *document, void *element) override;

    const WideString &Name() const;
    void SetName(const WideString &name);
    bool Enabled() const;
    void SetEnabled(bool enabled);
    /// The same as Properties.
    PropertyManager &Animation();
    const PropertyManager &Animation() const;
    /// The layer or object that holds the effect, and the composition or sequence of that.
    const kytl::KyID &ParentID() const;
    const kytl::KyID &ParentTimelineID() const;
    void SetParent(const kytl::KyID &parent, const kytl::KyID &timeline);
    void ClearParent();

    /// The properties that hold layer IDs: those of the panel's layer pickers. Their static values count.
    std::vector<NarrowString> LayerPickerProperties() const;
    bool IsLayerReferenced(const kytl::KyID &layerID) const;
    void ClearInvalidLayerReferences(const std::unordered_map<NarrowString, bool> &validIDs);
    /// @throws std::runtime_error if a new ID is malformed; what was changed before stays.
    void ChangeLayerReferences(const std::unordered_map<NarrowString, NarrowString> &changes);

private:
    friend class EffectsHelper;

    explicit EffectInstance(const std::shared_ptr<AbstractPlugin> &plugin);
    EffectInstance(const EffectInstance &other);

    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);

    ValuePtr<EffectInstance_Impl> impl_;
};

} // namespace marlet::project
