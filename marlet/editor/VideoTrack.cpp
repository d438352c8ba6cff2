#include <marlet/editor/VideoTrack.h>

#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceTrack_Impl.h>
#include <marlet/editor/VisualObject.h>

namespace marlet::project
{

struct VideoTrack_Impl : SequenceTrack_Impl {
    using SequenceTrack_Impl::SequenceTrack_Impl;

    bool visible = true;
};

namespace
{

constexpr char kTag[] = "VideoTrack";
constexpr unsigned int kVersion = 0;

template <class Xml, class Data> void VideoTrackFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Name", data.name);
    xml.Child("Visible", data.visible);
}

} // namespace

VideoTrack::VideoTrack(EditorSequence *sequence, const WideString &name)
    : impl_(std::make_unique<VideoTrack_Impl>(sequence, name))
{
}

VideoTrack::VideoTrack(EditorSequence *sequence, const XmlCursor &element,
                       const std::shared_ptr<AbstractPluginManager> &pluginManager)
    : VideoTrack(sequence, WideString())
{
    element.RequireHeader(kTag, kVersion);
    VideoTrackFields(element, *impl_);
    impl_->ReadObjects(element, "VisualObject", [&](const XmlCursor &object) {
        return std::shared_ptr<VisualObject>(new VisualObject(object, pluginManager, &impl_->objects));
    });
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

void VideoTrack::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, kTag, kVersion);
    VideoTrackFields(writer, *impl_);
    impl_->WriteObjects<VisualObject>(writer,
                                      [&writer](const VisualObject &object) { object.Serialize(writer); });
}

const kytl::KyID &VideoTrack::ID() const
{
    return impl_->id;
}

TrackType VideoTrack::Type() const
{
    return TrackType::Video;
}

const WideString &VideoTrack::Name() const
{
    return impl_->name;
}

void VideoTrack::SetName(const WideString &name)
{
    impl_->name = name;
}

SequenceObjectList &VideoTrack::Objects()
{
    return impl_->objects;
}

const SequenceObjectList &VideoTrack::Objects() const
{
    return impl_->objects;
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
