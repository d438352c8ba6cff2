#pragma once

#include <marlet/editor/AbstractSequenceTrack.h>

#include <memory>

namespace marlet::project
{

class AbstractPluginManager;
class EditorSequence;
class XmlCursor;
class XmlWriter;
struct VideoTrack_Impl;

/// A track of VisualObjects, which can be hidden. It owns its list of objects and must not outlive its
/// sequence. Belongs to the thread that edits the project.
class MARLET_EXPORT VideoTrack : public AbstractSequenceTrack
{
public:
    /// An empty track. Whoever calls adds it to the sequence.
    static std::shared_ptr<VideoTrack> Create(EditorSequence *sequence, const WideString &name);
    static std::shared_ptr<VideoTrack> Create(const std::shared_ptr<EditorSequence> &sequence,
                                              const WideString &name);
    VideoTrack(const VideoTrack &) = delete;
    VideoTrack &operator=(const VideoTrack &) = delete;
    ~VideoTrack() override;

    const kytl::KyID &ID() const override;
    TrackType Type() const override;
    const WideString &Name() const override;
    void SetName(const WideString &name) override;
    SequenceObjectList &Objects() override;
    const SequenceObjectList &Objects() const override;

    bool IsVisible() const;
    void SetVisible(bool visible);

private:
    friend class EditorSequence;

    VideoTrack(EditorSequence *sequence, const WideString &name);
    VideoTrack(EditorSequence *sequence, const XmlCursor &element,
               const std::shared_ptr<AbstractPluginManager> &pluginManager);

    void Serialize(XmlWriter &writer) const;

    std::unique_ptr<VideoTrack_Impl> impl_;
};

} // namespace marlet::project
