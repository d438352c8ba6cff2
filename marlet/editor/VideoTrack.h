#pragma once

#include <marlet/editor/SequenceTrack.h>

namespace marlet::project
{

/// A track of VisualObjects, which can be hidden.
class MARLET_EXPORT VideoTrack : public SequenceTrack
{
public:
    /// An empty track. Whoever calls adds it to the sequence.
    /// @throws std::invalid_argument for a null sequence
    static std::shared_ptr<VideoTrack> Create(EditorSequence *sequence, const WideString &name);
    static std::shared_ptr<VideoTrack> Create(const std::shared_ptr<EditorSequence> &sequence,
                                              const WideString &name);
    /// The same with an ID that is known, as that of a track in another version of the project.
    static std::shared_ptr<VideoTrack> Create(const std::shared_ptr<EditorSequence> &sequence,
                                              const WideString &name, const kytl::KyID &id);
    ~VideoTrack() override;

    bool IsVisible() const;
    void SetVisible(bool visible);

private:
    friend class EditorSequence;

    static const SequenceTrackKind &Kind();

    VideoTrack(EditorSequence *sequence, const WideString &name);
    VideoTrack(EditorSequence *sequence, const XmlCursor &element,
               const std::shared_ptr<AbstractPluginManager> &pluginManager);
};

} // namespace marlet::project
