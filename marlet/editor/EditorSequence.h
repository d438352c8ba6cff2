#pragma once

#include <marlet/foundation/AudioVideoSettings.h>
#include <marlet/foundation/KyID.h>
#include <marlet/foundation/KyList.h>
#include <marlet/foundation/Strings.h>

#include <memory>

namespace marlet::project
{

class AbstractPluginManager;
class AbstractSequenceObject;
class AbstractSequenceTrack;
class AudioObject;
class AudioTrack;
class PanelRenderState;
class VideoTrack;
class VisualObject;
class XmlCursor;
class XmlWriter;
enum class SnapMode : int;
enum class TimeFormat : int;
struct EditorSequence_Impl;

/// How the host's preview of the tracks looks; the library stores the numbers.
enum class SequencePreviewSize : int {};
enum class SequencePreviewMode : int {};

/// The editor timeline of a project: one cut of video and audio tracks, which it owns, with its frame format
/// and the state of the host's timeline panel. Frames are of the sequence. Belongs to the thread that edits
/// the project.
class MARLET_EXPORT EditorSequence
{
public:
    using VideoTrackList = kytl::KyList<std::shared_ptr<VideoTrack>, std::vector>;
    using AudioTrackList = kytl::KyList<std::shared_ptr<AudioTrack>, std::vector>;

    /// A sequence with one empty track of each kind. The frame count is its duration and its out point.
    static std::shared_ptr<EditorSequence> Create(AudioVideoSettings::Preset preset, int frameCount);
    EditorSequence(const EditorSequence &) = delete;
    EditorSequence &operator=(const EditorSequence &) = delete;
    ~EditorSequence();

    const kytl::KyID &ID() const;
    const WideString &Name() const;
    void SetName(const WideString &name);
    AudioVideoSettings &Settings();
    const AudioVideoSettings &Settings() const;
    /// The host adds and removes tracks here. The objects of a track that is taken away stay findable until
    /// its list is cleared or they are gone.
    VideoTrackList &VideoTracks();
    const VideoTrackList &VideoTracks() const;
    AudioTrackList &AudioTracks();
    const AudioTrackList &AudioTracks() const;

    int CurrentTimeIndicator() const;
    void SetCurrentTimeIndicator(int frame);
    int InPoint() const;
    /// A negative frame is raised to 0.
    void SetInPoint(int frame);
    int OutPoint() const;
    void SetOutPoint(int frame);
    double TimelineZoom() const;
    void SetTimelineZoom(double zoom);
    TimeFormat TimelineTimeFormat() const;
    void SetTimelineTimeFormat(TimeFormat format);
    SnapMode TimelineSnapMode() const;
    void SetTimelineSnapMode(SnapMode mode);
    SequencePreviewSize SequenceTrackPreviewSize() const;
    void SetSequenceTrackPreviewSize(SequencePreviewSize size);
    SequencePreviewMode SequenceTrackPreviewMode() const;
    void SetSequenceTrackPreviewMode(SequencePreviewMode mode);
    PanelRenderState &ViewerPanelState();
    const PanelRenderState &ViewerPanelState() const;

    // Lookups give an empty pointer where nothing is found; objects cost one hash lookup.

    std::shared_ptr<AbstractSequenceTrack> FindSequenceTrackByID(const kytl::KyID &id) const;
    std::shared_ptr<AbstractSequenceObject> FindObjectByID(const kytl::KyID &id) const;
    std::shared_ptr<VisualObject> FindVisualObjectByID(const kytl::KyID &id) const;
    std::shared_ptr<AudioObject> FindAudioObjectByID(const kytl::KyID &id) const;

    /// The nearest start or end of an object on any track before and after a frame, from 0 to the frame
    /// count.
    int PreviousEdit(int frame) const;
    int NextEdit(int frame) const;

private:
    friend class Project;
    friend class SequenceObjectList;
    friend class StoredFields;

    EditorSequence();
    EditorSequence(const XmlCursor &element, const std::shared_ptr<AbstractPluginManager> &pluginManager);

    void AddObjectToCache(const std::shared_ptr<AbstractSequenceObject> &object);
    void RemoveObjectFromCache(const std::shared_ptr<AbstractSequenceObject> &object);
    void RestoreInPoint(int frame); ///< any frame, as a file may have it
    void Serialize(XmlWriter &writer) const;

    std::unique_ptr<EditorSequence_Impl> impl_;
};

} // namespace marlet::project
