#include <marlet/editor/EditorSequence.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/ObjectsByID.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/foundation/xml/XmlReader.h>
#include <marlet/foundation/xml/XmlWriter.h>
#include <marlet/project/PanelRenderState.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <utility>

namespace marlet::project
{

/// The tracks come last: what goes with them may still look for objects.
struct EditorSequence_Impl {
    ObjectsByID objects;
    kytl::KyID id = kytl::KyID::Generate();
    WideString name;
    AudioVideoSettings settings{AudioVideoSettings::Preset::None, 0};
    int currentTimeIndicator = 0;
    int inPoint = 0;
    int outPoint = 0;
    double timelineZoom = 0.0;
    TimeFormat timelineTimeFormat{1000};
    SnapMode timelineSnapMode{1000};
    SequencePreviewSize previewSize{1001};
    SequencePreviewMode previewMode{1001};
    EditorSequence::VideoTrackList videoTracks;
    EditorSequence::AudioTrackList audioTracks;
    PanelRenderState viewerPanelState = PanelRenderState::Create();
    KeptXml kept;

    /// The video tracks, then the audio tracks.
    template <class Visit> void ForEachTrack(Visit &&visit) const
    {
        for (const std::shared_ptr<VideoTrack> &track : videoTracks)
            if (track)
                visit(*track);
        for (const std::shared_ptr<AudioTrack> &track : audioTracks)
            if (track)
                visit(*track);
    }
};

namespace
{

constexpr char kTag[] = "EditorSequence";
constexpr unsigned int kVersion = 0;

template <class Xml, class Data> void EditorSequenceFields(Xml &xml, Data &data)
{
    xml.Child("ID", data.id);
    xml.Child("Name", data.name);
    xml.Child("CTI", data.currentTimeIndicator);
    xml.Child("InPoint", data.inPoint);
    xml.Child("OutPoint", data.outPoint);
    xml.Child("TimelineZoom", data.timelineZoom);
    xml.Child("TimelineTimeFormat", data.timelineTimeFormat);
    xml.Child("TimelineSnapMode", data.timelineSnapMode);
    xml.Child("PreviewSize", data.previewSize);
    xml.Child("PreviewMode", data.previewMode);
}

/// The edit nearest to a frame among those offered to it; the first of several at one distance.
class NearestEdit
{
public:
    NearestEdit(int frame, int start) : frame_(frame), best_(start) {}

    void Offer(std::optional<int> edit)
    {
        if (edit && DistanceTo(*edit) < DistanceTo(best_))
            best_ = *edit;
    }

    int Within(int frameCount) const { return std::min(std::max(best_, 0), frameCount); }

private:
    std::int64_t DistanceTo(int edit) const { return std::abs(std::int64_t{frame_} - edit); }

    int frame_;
    int best_;
};

} // namespace

EditorSequence::EditorSequence() : impl_(std::make_unique<EditorSequence_Impl>())
{
}

EditorSequence::EditorSequence(const XmlCursor &element,
                               const std::shared_ptr<AbstractPluginManager> &pluginManager)
    : EditorSequence()
{
    element.RequireHeader(kTag, kVersion);
    EditorSequenceFields(element, *impl_);
    if (const XmlCursor settings = element.Find("AudioVideoSettings"); !settings.IsNull())
        impl_->settings = AudioVideoSettings(settings);
    XmlCursor track = element.Find("Video").Find("VideoTrack");
    for (; !track.IsNull(); track = track.Next("VideoTrack"))
        impl_->videoTracks.Add(std::shared_ptr<VideoTrack>(new VideoTrack(this, track, pluginManager)));
    track = element.Find("Audio").Find("AudioTrack");
    for (; !track.IsNull(); track = track.Next("AudioTrack"))
        impl_->audioTracks.Add(std::shared_ptr<AudioTrack>(new AudioTrack(this, track, pluginManager)));
    if (const XmlCursor viewer = element.Find("ViewerState"); !viewer.IsNull())
        impl_->viewerPanelState = PanelRenderState(viewer);
    impl_->kept = KeptXml(element);
}

EditorSequence::~EditorSequence() = default;

std::shared_ptr<EditorSequence> EditorSequence::Create(AudioVideoSettings::Preset preset, int frameCount)
{
    std::shared_ptr<EditorSequence> sequence(new EditorSequence);
    EditorSequence_Impl &data = *sequence->impl_;
    data.name = u"Editor";
    data.settings = AudioVideoSettings(preset, frameCount);
    data.outPoint = frameCount;
    data.previewMode = SequencePreviewMode{1002};
    data.videoTracks.Add(VideoTrack::Create(sequence, u"Video 1"));
    data.audioTracks.Add(AudioTrack::Create(sequence, u"Audio 1"));
    return sequence;
}

void EditorSequence::Serialize(XmlWriter &writer) const
{
    const XmlElement element(writer, kTag, kVersion, impl_->kept);
    EditorSequenceFields(writer, *impl_);
    impl_->settings.Serialize(writer);
    const auto writeTracks = [&writer](const char *tag, const auto &tracks) {
        const XmlElement list(writer, tag);
        for (const auto &track : tracks)
            if (track)
                track->Serialize(writer);
    };
    writeTracks("Video", impl_->videoTracks);
    writeTracks("Audio", impl_->audioTracks);
    impl_->viewerPanelState.Serialize(writer);
}

void EditorSequence::AddObjectToCache(const std::shared_ptr<AbstractSequenceObject> &object)
{
    impl_->objects.Set(object);
}

void EditorSequence::RemoveObjectFromCache(const std::shared_ptr<AbstractSequenceObject> &object)
{
    impl_->objects.Erase(object->ID());
}

std::shared_ptr<AbstractSequenceTrack> EditorSequence::FindSequenceTrackByID(const kytl::KyID &id) const
{
    const auto hasID = [&id](const auto &track) { return track && track->ID() == id; };
    if (std::shared_ptr<VideoTrack> track = impl_->videoTracks.FindFirst(hasID))
        return track;
    return impl_->audioTracks.FindFirst(hasID);
}

std::shared_ptr<AbstractSequenceObject> EditorSequence::FindObjectByID(const kytl::KyID &id) const
{
    return impl_->objects.Find(id);
}

std::shared_ptr<VisualObject> EditorSequence::FindVisualObjectByID(const kytl::KyID &id) const
{
    return std::dynamic_pointer_cast<VisualObject>(FindObjectByID(id));
}

std::shared_ptr<AudioObject> EditorSequence::FindAudioObjectByID(const kytl::KyID &id) const
{
    return std::dynamic_pointer_cast<AudioObject>(FindObjectByID(id));
}

int EditorSequence::PreviousEdit(int frame) const
{
    NearestEdit nearest(frame, 0);
    impl_->ForEachTrack(
        [&](const AbstractSequenceTrack &track) { nearest.Offer(track.Objects().FindPreviousEdit(frame)); });
    return nearest.Within(impl_->settings.FrameCount());
}

int EditorSequence::NextEdit(int frame) const
{
    NearestEdit nearest(frame, impl_->settings.FrameCount());
    impl_->ForEachTrack(
        [&](const AbstractSequenceTrack &track) { nearest.Offer(track.Objects().FindNextEdit(frame)); });
    return nearest.Within(impl_->settings.FrameCount());
}

const kytl::KyID &EditorSequence::ID() const
{
    return impl_->id;
}

const WideString &EditorSequence::Name() const
{
    return impl_->name;
}

void EditorSequence::SetName(const WideString &name)
{
    impl_->name = name;
}

AudioVideoSettings &EditorSequence::Settings()
{
    return impl_->settings;
}

const AudioVideoSettings &EditorSequence::Settings() const
{
    return impl_->settings;
}

EditorSequence::VideoTrackList &EditorSequence::VideoTracks()
{
    return impl_->videoTracks;
}

const EditorSequence::VideoTrackList &EditorSequence::VideoTracks() const
{
    return impl_->videoTracks;
}

EditorSequence::AudioTrackList &EditorSequence::AudioTracks()
{
    return impl_->audioTracks;
}

const EditorSequence::AudioTrackList &EditorSequence::AudioTracks() const
{
    return impl_->audioTracks;
}

int EditorSequence::CurrentTimeIndicator() const
{
    return impl_->currentTimeIndicator;
}

void EditorSequence::SetCurrentTimeIndicator(int frame)
{
    impl_->currentTimeIndicator = frame;
}

int EditorSequence::InPoint() const
{
    return impl_->inPoint;
}

void EditorSequence::SetInPoint(int frame)
{
    impl_->inPoint = std::max(frame, 0);
}

void EditorSequence::RestoreInPoint(int frame)
{
    impl_->inPoint = frame;
}

int EditorSequence::OutPoint() const
{
    return impl_->outPoint;
}

void EditorSequence::SetOutPoint(int frame)
{
    impl_->outPoint = frame;
}

double EditorSequence::TimelineZoom() const
{
    return impl_->timelineZoom;
}

void EditorSequence::SetTimelineZoom(double zoom)
{
    impl_->timelineZoom = zoom;
}

TimeFormat EditorSequence::TimelineTimeFormat() const
{
    return impl_->timelineTimeFormat;
}

void EditorSequence::SetTimelineTimeFormat(TimeFormat format)
{
    impl_->timelineTimeFormat = format;
}

SnapMode EditorSequence::TimelineSnapMode() const
{
    return impl_->timelineSnapMode;
}

void EditorSequence::SetTimelineSnapMode(SnapMode mode)
{
    impl_->timelineSnapMode = mode;
}

SequencePreviewSize EditorSequence::SequenceTrackPreviewSize() const
{
    return impl_->previewSize;
}

void EditorSequence::SetSequenceTrackPreviewSize(SequencePreviewSize size)
{
    impl_->previewSize = size;
}

SequencePreviewMode EditorSequence::SequenceTrackPreviewMode() const
{
    return impl_->previewMode;
}

void EditorSequence::SetSequenceTrackPreviewMode(SequencePreviewMode mode)
{
    impl_->previewMode = mode;
}

PanelRenderState &EditorSequence::ViewerPanelState()
{
    return impl_->viewerPanelState;
}

const PanelRenderState &EditorSequence::ViewerPanelState() const
{
    return impl_->viewerPanelState;
}

} // namespace marlet::project
