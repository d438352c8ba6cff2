#pragma once

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/foundation/ValuePtr.h>

namespace marlet::project
{

class AbstractPluginManager;
class EditorSequence;
class Project;
class SequenceObjectList;
class XmlCursor;
class XmlWriter;
struct AudioObject_Impl;

/// A sound on an AudioTrack, with a level and a mute switch.
class MARLET_EXPORT AudioObject : public AbstractSequenceObject
{
public:
    static std::shared_ptr<AudioObject> Create(std::shared_ptr<AbstractAsset> asset,
                                               const std::shared_ptr<EditorSequence> &sequence);
    /// Reads all but the transitions, which only a track can.
    /// @throws XmlParseException, InvalidProjectVersionException, ProjectException, std::runtime_error,
    /// boost::bad_lexical_cast, MissingPluginException, InvalidPluginVersionException
    static std::shared_ptr<AudioObject>
    CreateFromXml(const WideString &xml, const std::shared_ptr<AbstractPluginManager> &pluginManager);
    /// A copy on no track and without a partner, with properties and effects of its own. One-sided
    /// transitions are copied if that is asked for.
    static std::shared_ptr<AudioObject> Copy(const std::shared_ptr<AudioObject> &other, bool copyTransitions);
    ~AudioObject() override;

    const kytl::KyID &ID() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;
    const kytl::KyID &AssetID() const override;
    project::AssetType AssetType() const override;
    AbstractAssetInstance::Type AssetInstanceType() const override;
    int AssetInstanceStart() const override;
    void SetAssetInstanceStart(int frame) override;
    /// The last frame of the asset that is used; speed plays no part.
    int AssetInstanceEnd() const override;
    const kytl::KyID &ParentSequenceID() const override;
    ObjectType Type() const override;
    PropertyManager &Properties() override;
    const PropertyManager &Properties() const override;
    std::shared_ptr<AbstractAsset> Asset(const AssetList &assets) const override;
    int StartFrame() const override;
    int EndFrame() const override;
    void SetEndFrame(int frame) override;
    int Length() const override;
    EffectList &Effects() override;
    const EffectList &Effects() const override;
    double Speed() const override;
    void SetSpeed(double speed) override;
    const kytl::KyID &ParentTrackID() const override;
    void SetParentTrackID(const kytl::KyID &id) override;
    void ClearParentTrackID() override;
    const kytl::KyID &LinkedObjectID() const override;
    void SetLinkedObjectID(const kytl::KyID &id) override;
    void ClearLinkedObject() override;
    const std::shared_ptr<Transition> &IncomingTransition() const override;
    void SetIncomingTransition(const std::shared_ptr<Transition> &transition) override;
    void ClearIncomingTransition() override;
    const std::shared_ptr<Transition> &OutgoingTransition() const override;
    void SetOutgoingTransition(const std::shared_ptr<Transition> &transition) override;
    void ClearOutgoingTransition() override;

    WideString Serialize() const;

    /// The static value of "audioLevel".
    /// @throws boost::bad_get if the property holds another type
    float Levels() const;
    void SetLevels(float level);
    bool IsMuted() const;
    void SetMuted(bool muted);
    /// The rate by which the asset's sound counts frames, 0 for an asset without sound.
    double AudioFrameRate(const AssetList &assets) const;

private:
    friend class AudioTrack;

    AudioObject();
    AudioObject(const std::shared_ptr<AbstractAsset> &asset, const EditorSequence &sequence);
    /// Without a list the transitions are not read.
    AudioObject(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                const SequenceObjectList *objects);
    AudioObject(const AudioObject &other);
    AudioObject &operator=(AudioObject other);

    void SetStartFrame(int frame) override;
    void Serialize(XmlWriter &writer) const;

    ValuePtr<AudioObject_Impl> impl_;
};

} // namespace marlet::project
