#include <marlet/editor/VideoTrack.h>

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceTrack_Impl.h>
#include <marlet/editor/VisualObject.h>

namespace marlet::project
{

const SequenceTrackKind &VideoTrack::Kind()
{
    static const SequenceTrackKind kind{
        .type = TrackType::Video,
        .tag = "VideoTrack",
        .objectTag = "VisualObject",
        .readObject = [](const XmlCursor &element,
                         const std::shared_ptr<AbstractPluginManager> &pluginManager,
                         const SequenceObjectList *objects) -> SequenceObjectList::Object {
            return std::shared_ptr<VisualObject>(new VisualObject(element, pluginManager, objects));
        },
        .holds =
            [](const AbstractSequenceObject &object) {
                return dynamic_cast<const VisualObject *>(&object) != nullptr;
            },
    };
    return kind;
}

VideoTrack::VideoTrack(EditorSequence *sequence, const WideString &name)
    : SequenceTrack(Kind(), sequence, name)
{
}

VideoTrack::VideoTrack(EditorSequence *sequence, const XmlCursor &element,
                       const std::shared_ptr<AbstractPluginManager> &pluginManager)
    : SequenceTrack(Kind(), sequence, element, pluginManager)
{
}

VideoTrack::~VideoTrack() = default;

std::shared_ptr<VideoTrack> VideoTrack::Create(EditorSequence *sequence, const WideString &name)
{
    return std::shared_ptr<VideoTrack>(new VideoTrack(sequence, name));
}

std::shared_ptr<VideoTrack> VideoTrack::Create(const std::shared_ptr<EditorSequence> &sequence,
                                               const WideString &name)
{
    return Create(sequence.get(), name);
}

std::shared_ptr<VideoTrack> VideoTrack::Create(const std::shared_ptr<EditorSequence> &sequence,
                                               const WideString &name, const kytl::KyID &id)
{
    auto track = Create(sequence, name);
    track->SetID(id);
    return track;
}

bool VideoTrack::IsVisible() const
{
    return impl_->visible;
}

void VideoTrack::SetVisible(bool visible)
{
    impl_->visible = visible;
}

} // namespace marlet::project
