#pragma once

#include <marlet/editor/AbstractSequenceTrack.h>

#include <memory>

namespace marlet::project
{

class AbstractPluginManager;
class EditorSequence;
class XmlCursor;
class XmlWriter;
struct AudioTrack_Impl;

/// A track of AudioObjects, with a level and a mute switch. It owns its list of objects and must not outlive
/// its sequence. Belongs to the thread that edits the project.
class MARLET_EXPORT AudioTrack : public AbstractSequenceTrack
{
public:
    /// An empty track. Whoever calls adds it to the sequence.
    static std::shared_ptr<AudioTrack> Create(EditorSequence *sequence, const WideString &name);
    static std::shared_ptr<AudioTrack> Create(const std::shared_ptr<EditorSequence> &sequence,
                                              const WideString &name);
    AudioTrack(const AudioTrack &) = delete;
    AudioTrack &operator=(const AudioTrack &) = delete;
    ~AudioTrack() override;

    const kytl::KyID &ID() const override;
    TrackType Type() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;
    SequenceObjectList &Objects() override;
    const SequenceObjectList &Objects() const override;

    bool IsMuted() const;
    void SetMuted(bool muted);
    /// Not checked for a range.
    float Level() const;
    void SetLevel(float level);

private:
    friend class EditorSequence;

    AudioTrack(EditorSequence *sequence, const WideString &name);
    AudioTrack(EditorSequence *sequence, const XmlCursor &element,
               const std::shared_ptr<AbstractPluginManager> &pluginManager);

    void Serialize(XmlWriter &writer) const;

    std::unique_ptr<AudioTrack_Impl> impl_;
};

} // namespace marlet::project
