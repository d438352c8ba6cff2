#pragma once

#include <marlet/editor/SequenceObject.h>

namespace marlet::project
{

/// A sound on an AudioTrack, with a level and a mute switch.
class MARLET_EXPORT AudioObject : public SequenceObject
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

    AbstractAssetInstance::Type AssetInstanceType() const override;
    ObjectType Type() const override;

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

    AudioObject(const std::shared_ptr<AbstractAsset> &asset, const std::shared_ptr<EditorSequence> &sequence);
    /// Without a list the transitions are not read.
    AudioObject(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager,
                const SequenceObjectList *objects);
    AudioObject(const AudioObject &other);
    AudioObject &operator=(const AudioObject &other);
};

} // namespace marlet::project
