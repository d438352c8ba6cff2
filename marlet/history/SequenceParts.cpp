// The parts of the sequence, its tracks and objects, without the places of the objects.

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/history/Fields.h>
#include <marlet/history/Parts.h>
#include <marlet/history/StoredFields.h>
#include <marlet/plugins/EffectInstance.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/PanelRenderState.h>

namespace marlet::project
{

bool operator==(const PanelRenderState &a, const PanelRenderState &b);

namespace
{

using Sequence = EditorSequence;
using Object = AbstractSequenceObject;

constexpr std::tuple kSequenceFields(
    Setting(Aspect::Name, &Sequence::Name, &Sequence::SetName),
    Held(Aspect::Settings, &Sequence::Settings, &Sequence::Settings),
    Held(Aspect::Members, &Sequence::VideoTracks, &Sequence::VideoTracks),
    Held(Aspect::Members, &Sequence::AudioTracks, &Sequence::AudioTracks),
    Setting(Aspect::View, &Sequence::CurrentTimeIndicator, &Sequence::SetCurrentTimeIndicator),
    Setting(Aspect::View, &Sequence::InPoint, StoredFields::SetInPoint<Sequence>),
    Setting(Aspect::View, &Sequence::OutPoint, &Sequence::SetOutPoint),
    Setting(Aspect::View, &Sequence::TimelineZoom, &Sequence::SetTimelineZoom),
    Setting(Aspect::View, &Sequence::TimelineTimeFormat, &Sequence::SetTimelineTimeFormat),
    Setting(Aspect::View, &Sequence::TimelineSnapMode, &Sequence::SetTimelineSnapMode),
    Setting(Aspect::View, &Sequence::SequenceTrackPreviewSize, &Sequence::SetSequenceTrackPreviewSize),
    Setting(Aspect::View, &Sequence::SequenceTrackPreviewMode, &Sequence::SetSequenceTrackPreviewMode));

constexpr std::tuple kSequencePanels(Held(Aspect::View, &Sequence::ViewerPanelState,
                                          &Sequence::ViewerPanelState));

constexpr std::tuple kTrackFields(Setting(Aspect::Name, &AbstractSequenceTrack::Name,
                                          &AbstractSequenceTrack::SetName));

constexpr std::tuple kVideoTrackFields(Setting(Aspect::Settings, &VideoTrack::IsVisible,
                                               &VideoTrack::SetVisible));

constexpr std::tuple kAudioTrackFields(Setting(Aspect::Settings, &AudioTrack::IsMuted, &AudioTrack::SetMuted),
                                       Setting(Aspect::Settings, &AudioTrack::Level, &AudioTrack::SetLevel));

AssetUse UseOf(const Object &object)
{
    const auto *known = dynamic_cast<const SequenceObject *>(&object);
    return known != nullptr ? known->Use() : AssetUse();
}

void SetUse(Object &object, const AssetUse &use)
{
    if (auto *known = dynamic_cast<SequenceObject *>(&object))
        known->SetUse(use);
}

bool IsMuted(const Object &object)
{
    const auto *sound = dynamic_cast<const AudioObject *>(&object);
    return sound != nullptr && sound->IsMuted();
}

void SetMuted(Object &object, bool muted)
{
    if (auto *sound = dynamic_cast<AudioObject *>(&object))
        sound->SetMuted(muted);
}

constexpr std::tuple
    kObjectFields(Setting(Aspect::Name, &Object::Name, &Object::SetName), Field{Aspect::Links, UseOf, SetUse},
                  Setting(Aspect::Frames, &Object::AssetInstanceStart, &Object::SetAssetInstanceStart),
                  Field{Aspect::Settings, IsMuted, SetMuted},
                  Setting(Aspect::Links, &Object::ParentTrackID, &Object::SetParentTrackID),
                  Setting(Aspect::Links, &Object::LinkedObjectID, &Object::SetLinkedObjectID),
                  Setting(Aspect::Links, &Object::IncomingTransition, &Object::SetIncomingTransition),
                  Setting(Aspect::Links, &Object::OutgoingTransition, &Object::SetOutgoingTransition),
                  Held(Aspect::Members, &Object::Effects, &Object::Effects));

} // namespace

std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<EditorSequence> &sequence)
{
    return Make<kSequenceFields>(sequence, ObjectKind::Sequence);
}

std::unique_ptr<EditedPart> MakePanelsPart(const std::shared_ptr<EditorSequence> &sequence)
{
    return Make<kSequencePanels>(sequence, ObjectKind::Sequence);
}

void MakeParts(const std::shared_ptr<AbstractSequenceTrack> &track, const PartSink &sink)
{
    sink(Make<kTrackFields>(track, ObjectKind::Track));
    if (const auto video = std::dynamic_pointer_cast<VideoTrack>(track))
        sink(Make<kVideoTrackFields>(video, ObjectKind::Track));
    else if (const auto audio = std::dynamic_pointer_cast<AudioTrack>(track))
        sink(Make<kAudioTrackFields>(audio, ObjectKind::Track));
}

std::unique_ptr<EditedPart> MakePart(const std::shared_ptr<AbstractSequenceObject> &object)
{
    return Make<kObjectFields>(object, ObjectKind::SequenceObject);
}

void TakeOver(EditorSequence &sequence, const EditorSequence &other)
{
    TakeOverFields<kSequenceFields>(sequence, other);
}

void TakeOver(AbstractSequenceTrack &track, const AbstractSequenceTrack &other)
{
    TakeOverFields<kTrackFields>(track, other);
    if (auto *video = dynamic_cast<VideoTrack *>(&track))
        TakeOverFields<kVideoTrackFields>(*video, dynamic_cast<const VideoTrack &>(other));
    else if (auto *audio = dynamic_cast<AudioTrack *>(&track))
        TakeOverFields<kAudioTrackFields>(*audio, dynamic_cast<const AudioTrack &>(other));
}

void TakeOver(AbstractSequenceObject &object, const AbstractSequenceObject &other)
{
    TakeOverFields<kObjectFields>(object, other);
}

} // namespace marlet::project
