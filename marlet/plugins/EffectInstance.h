#pragma once

#include <marlet/plugins/PluginInstance.h>

#include <unordered_map>
#include <vector>

namespace marlet::project
{

struct EffectInstance_Impl;

/// One use of an effect plug-in on a layer or a sequence object: a name, an on/off switch, and what every
/// instance of a plug-in has.
class MARLET_EXPORT EffectInstance : public PluginInstance
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
    /// plug-in is gone. When the plug-in hears of the copy, that still has the InstanceData of its source,
    /// which is the plug-in's to replace; its HostInstanceData is null afterwards.
    /// @throws std::invalid_argument for a null pointer
    static std::shared_ptr<EffectInstance> Copy(const std::shared_ptr<EffectInstance> &source);
    ~EffectInstance() override;

    InstanceType Type() const override;

    const WideString &Name() const;
    void SetName(const WideString &name);
    bool Enabled() const;
    void SetEnabled(bool enabled);
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

    EffectInstance_Impl &Data();
    const EffectInstance_Impl &Data() const;
};

} // namespace marlet::project
