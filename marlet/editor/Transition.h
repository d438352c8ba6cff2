#pragma once

#include <marlet/foundation/ValuePtr.h>
#include <marlet/plugins/AbstractPluginInstance.h>

namespace marlet::project
{

class XmlCursor;
class XmlWriter;
struct Transition_Impl;

/// One use of a transition plug-in at a cut of the editor timeline: a copy of the plug-in's properties, the
/// state of its panel, frames, and the IDs of the objects before and after the cut, of which one may be
/// missing. Objects hold it in their slots; nothing keeps the two sides in step.
///
/// The plug-in hears of each instance: InstanceCreated before any data arrive, InstanceDestroyed before they
/// go. An exception out of InstanceDestroyed is dropped. Belongs to the thread that edits the project.
class MARLET_EXPORT Transition : public AbstractPluginInstance
{
public:
    static std::shared_ptr<Transition> Create(const std::shared_ptr<AbstractPlugin> &plugin);
    /// @throws XmlParseException, InvalidProjectVersionException
    /// @throws std::runtime_error if the text is of another plug-in, or an ID is malformed
    /// @throws InvalidPluginVersionException if a newer version of the plug-in saved it
    static std::shared_ptr<Transition> CreateFromXml(const std::shared_ptr<AbstractPlugin> &plugin,
                                                     const WideString &xml);
    /// A copy with a new ID, between no objects, with private data of its own. It shares the properties of
    /// its source until they are replaced. An empty pointer if the plug-in is gone.
    static std::shared_ptr<Transition> Copy(const std::shared_ptr<Transition> &source);
    Transition &operator=(const Transition &) = delete;
    ~Transition() override;

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

    /// The same as Properties.
    PropertyManager &Animation();
    const PropertyManager &Animation() const;
    /// The objects before and after the cut; the null ID for none.
    const kytl::KyID &FromObject() const;
    void SetFromObject(const kytl::KyID &id);
    void ClearFromObject();
    const kytl::KyID &ToObject() const;
    void SetToObject(const kytl::KyID &id);
    void ClearToObject();
    int Length() const; ///< frames
    void SetLength(int frames);
    /// Frames, relative to what host and plug-in agree on.
    int RelativeStartFrame() const;
    void SetRelativeStartFrame(int frame);

private:
    friend class EffectsHelper;

    explicit Transition(const std::shared_ptr<AbstractPlugin> &plugin);
    Transition(const Transition &other);

    void Serialize(XmlWriter &writer) const;
    void Deserialize(const XmlCursor &element);

    ValuePtr<Transition_Impl> impl_;
};

} // namespace marlet::project
