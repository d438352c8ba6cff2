#pragma once

#include <marlet/plugins/PluginInstance.h>

namespace marlet::project
{

struct Transition_Impl;

/// One use of a transition plug-in at a cut of the editor timeline: frames, the IDs of the objects before and
/// after the cut, of which one may be missing, and what every instance of a plug-in has. Objects hold it in
/// their slots; nothing keeps the two sides in step.
class MARLET_EXPORT Transition : public PluginInstance
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
    ///
    /// When the plug-in hears of the copy, that still has the InstanceData of its source. After
    /// InstanceCreated both data pointers of the copy are null, whatever the plug-in has set there, so a
    /// plug-in allocates nothing in InstanceCreated but when it first needs it, which may be in
    /// DeserializeInstance.
    /// @throws std::invalid_argument for a null pointer
    static std::shared_ptr<Transition> Copy(const std::shared_ptr<Transition> &source);
    ~Transition() override;

    InstanceType Type() const override;

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

    Transition_Impl &Data();
    const Transition_Impl &Data() const;
};

} // namespace marlet::project
