#pragma once

#include <marlet/editor/AbstractSequenceTrack.h>

#include <memory>

namespace marlet::project
{

class AbstractPluginManager;
class EditorSequence;
class XmlCursor;
class XmlWriter;
struct SequenceTrackKind;
struct SequenceTrack_Impl;

/// What the two classes of tracks have in common, which is all but their switches and the level. It owns its
/// list of objects and must not outlive its sequence. Belongs to the thread that edits the project.
class MARLET_EXPORT SequenceTrack : public AbstractSequenceTrack
{
public:
    SequenceTrack(const SequenceTrack &) = delete;
    SequenceTrack &operator=(const SequenceTrack &) = delete;
    ~SequenceTrack() override;

    const kytl::KyID &ID() const override;
    TrackType Type() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;
    SequenceObjectList &Objects() override;
    const SequenceObjectList &Objects() const override;

protected:
    /// An empty track. The kind lives as long as the program.
    /// @throws std::invalid_argument for a null sequence
    SequenceTrack(const SequenceTrackKind &kind, EditorSequence *sequence, const WideString &name);
    SequenceTrack(const SequenceTrackKind &kind, EditorSequence *sequence, const XmlCursor &element,
                  const std::shared_ptr<AbstractPluginManager> &pluginManager);

    /// Of a track without objects.
    void SetID(const kytl::KyID &id);

    std::unique_ptr<SequenceTrack_Impl> impl_;

private:
    friend class EditorSequence;

    void Serialize(XmlWriter &writer) const;
};

} // namespace marlet::project
