#pragma once

#include <marlet/editor/SequenceTrack.h>

namespace marlet::project
{

/// A track of AudioObjects, with a level and a mute switch.
class MARLET_EXPORT AudioTrack : public SequenceTrack
{
public:
    /// An empty track. Whoever calls adds it to the sequence.
    /// @throws std::invalid_argument for a null sequence
    static std::shared_ptr<AudioTrack> Create(EditorSequence *sequence, const WideString &name);
    static std::shared_ptr<AudioTrack> Create(const std::shared_ptr<EditorSequence> &sequence,
                                              const WideString &name);
    /// The same with an ID that is known, as that of a track in another version of the project.
    static std::shared_ptr<AudioTrack> Create(const std::shared_ptr<EditorSequence> &sequence,
                                              const WideString &name, const kytl::KyID &id);
    ~AudioTrack() override;

    bool IsMuted() const;
    void SetMuted(bool muted);
    /// Not checked for a range.
    float Level() const;
    void SetLevel(float level);

private:
    friend class EditorSequence;

    static const SequenceTrackKind &Kind();

    AudioTrack(EditorSequence *sequence, const WideString &name);
    AudioTrack(EditorSequence *sequence, const XmlCursor &element,
               const std::shared_ptr<AbstractPluginManager> &pluginManager);
};

} // namespace marlet::project
