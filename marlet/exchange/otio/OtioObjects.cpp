#include <marlet/exchange/otio/OtioObjects.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/exchange/ExchangeFormat.h>
#include <marlet/exchange/Telling.h>
#include <marlet/exchange/otio/OtioClips.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

constexpr char kDissolve[] = "SMPTE_Dissolve";

/// What of an item only other programs have a use for, told.
bool HasUnknown(const Json &part)
{
    return part.contains("effects") || part.contains("markers");
}

NarrowString NameOf(const Json &item)
{
    return "\"" + TextMemberOf(item, "name") + "\"";
}

} // namespace

OtioObjects::OtioObjects(Project &project, OtioPlan &plan, const ExchangeOptions &options)
    : project_(project),
      plan_(plan),
      options_(options),
      sequence_(project.Sequence()),
      assets_(project, options, plan.Rate())
{
}

void OtioObjects::Run()
{
    for (const OtioPlannedTrack &track : plan_.Tracks())
        for (const OtioPlannedClip &clip : track.clips)
            if (ShowsOther(clip, track.type))
                assets_.Expect(*clip.item);
    for (const OtioPlannedTrack &track : plan_.Tracks())
        SetUpTrack(track);
    for (const OtioPlannedTrack &track : plan_.Tracks())
        for (const OtioPlannedTransition &transition : track.transitions)
            SetUpTransition(transition);
    if (!plan_.HasProject())
        TakePictureSize();
}

OtioObjects::Object OtioObjects::Known(const kytl::KyID &id) const
{
    return id.IsNull() ? nullptr : std::static_pointer_cast<SequenceObject>(sequence_->FindObjectByID(id));
}

/// Whether an object of the type of its track has to be made, or another program has pointed the one that
/// there is at other media.
bool OtioObjects::ShowsOther(const OtioPlannedClip &clip, TrackType type) const
{
    const Object object = Known(clip.id.IsNull() ? clip.copied : clip.id);
    if (!object || (object->Type() == ObjectType::Visual) != (type == TrackType::Video))
        return true;
    const Json &reference = *ActiveReferenceOf(*clip.item).json;
    const NarrowString source = SourceOf(reference);
    return !source.empty() && (TextMemberOf(OwnMetadataOf(reference), "source") != source ||
                               !object->Asset(std::as_const(project_).Assets()));
}

void OtioObjects::SetUpTrack(const OtioPlannedTrack &planned)
{
    const auto track = sequence_->FindSequenceTrackByID(planned.id);
    if (!track)
        throw std::logic_error("The track " + planned.id.ToNarrowString() + " is missing");
    const WideString name = FromUtf8(planned.lane.name);
    if (name != track->Name() && !(name.empty() && !planned.lane.track))
        track->SetName(name);
    if (planned.lane.track) {
        const bool isOn = IsEnabled(*planned.lane.track);
        if (auto *const video = dynamic_cast<VideoTrack *>(track.get()))
            video->SetVisible(isOn);
        else
            static_cast<AudioTrack &>(*track).SetMuted(!isOn);
        KeepItem(planned.id,
                 ForeignPartOf(*planned.lane.track, {"name", "kind", "children", "enabled", "source_range"}),
                 "track " + NameOf(*planned.lane.track));
    }
    for (const OtioPlannedClip &clip : planned.clips)
        SetUpClip(clip, track);
    Json gaps = Json::object();
    for (const OtioSpan &gap : planned.lane.gaps)
        if (Json part = ForeignPartOf(*gap.item, {"source_range", "enabled"}); !part.empty())
            gaps[GapKey(plan_.Whole(gap.start), plan_.Whole(gap.end))] = std::move(part);
    kept_.Keep(planned.id, kKeptGaps, std::move(gaps));
    for (const auto &[id, item] : planned.known)
        kept_.Keep(id, kKeptItem,
                   OwnMetadataOf(*item).contains(kForeignKey)
                       ? ForeignPartOf(*item, {"in_offset", "out_offset"})
                       : ForeignPartOf(*item, {"name", "transition_type", "in_offset", "out_offset"}));
}

void OtioObjects::SetUpClip(const OtioPlannedClip &clip, const std::shared_ptr<AbstractSequenceTrack> &track)
{
    const bool showsOther = ShowsOther(clip, track->Type());
    Object object = Known(clip.id);
    if (!object) {
        object = Made(clip, track->Type());
        object->SetParentTrackID(track->ID());
        track->Objects().Insert(object, clip.start);
        object->SetEndFrame(clip.end);
        object->SetAssetInstanceStart(clip.source);
    } else if (showsOther) {
        object->SetAsset(assets_.AssetFor(*clip.item));
    }
    objects_[&clip] = object;
    const WideString name = FromUtf8(TextMemberOf(*clip.item, "name"));
    if (name != object->Name() && !(name.empty() && clip.id.IsNull()))
        object->SetName(name);
    if (const double speed = EffectsOf(*clip.item).speed; speed != SpeedOf(*object))
        object->SetSpeed(speed);
    if (auto *const audio = dynamic_cast<AudioObject *>(object.get()))
        audio->SetMuted(!IsEnabled(*clip.item));
    KeepClip(*clip.item, *object);
}

OtioObjects::Object OtioObjects::Made(const OtioPlannedClip &clip, TrackType type)
{
    const bool isVideo = type == TrackType::Video;
    const Object copied = Known(clip.copied);
    if (copied && (copied->Type() == ObjectType::Visual) == isVideo) {
        Object copy = isVideo
                          ? Object(VisualObject::Copy(std::static_pointer_cast<VisualObject>(copied), false))
                          : Object(AudioObject::Copy(std::static_pointer_cast<AudioObject>(copied), false));
        if (ShowsOther(clip, type))
            copy->SetAsset(assets_.AssetFor(*clip.item));
        return copy;
    }
    const auto asset = assets_.AssetFor(*clip.item);
    return isVideo ? Object(VisualObject::Create(asset, sequence_))
                   : Object(AudioObject::Create(asset, sequence_));
}

void OtioObjects::SetUpTransition(const OtioPlannedTransition &planned)
{
    const auto objectOf = [&](const OtioPlannedClip *clip) { return clip ? objects_.at(clip) : nullptr; };
    const Object from = objectOf(planned.from);
    const Object to = objectOf(planned.to);
    const NarrowString type = TextMemberOf(*planned.item, "transition_type");
    if (!options_.dissolve || (!from && !to)) {
        if (from && to)
            kept_.Keep(from->ID(), kKeptTransition, *planned.item);
        const NarrowString what = "the transition " + NameOf(*planned.item);
        return from && to ? TellKept(options_, what, {from->ID()})
                          : Tell(options_, LoadEntry::Severity::Loss, what);
    }
    if (type != kDissolve)
        Tell(options_, LoadEntry::Severity::Warning,
             "the transition " + NameOf(*planned.item) + " of type \"" + type + "\" is a dissolve");
    const auto transition = Transition::Create(options_.dissolve);
    transition->SetLength(Saturate(std::int64_t{planned.before} + planned.after));
    transition->SetRelativeStartFrame(-planned.before);
    if (from) {
        transition->SetFromObject(from->ID());
        from->SetOutgoingTransition(transition);
    }
    if (to) {
        transition->SetToObject(to->ID());
        to->SetIncomingTransition(transition);
    }
    kept_.Keep(transition->ID(), kKeptItem, ForeignPartOf(*planned.item, {"in_offset", "out_offset"}));
}

void OtioObjects::KeepClip(const Json &clip, const SequenceObject &object)
{
    Json part = ForeignPartOf(clip, {"name", "source_range", "effects", "enabled", "media_reference",
                                     "media_references", "active_media_reference_key"});
    if (Json others = EffectsOf(clip).others; !others.empty())
        part["effects"] = std::move(others);
    if (object.Type() == ObjectType::Visual && !IsEnabled(clip)) {
        part["enabled"] = false;
        TellKept(options_, "that clip " + NameOf(clip) + " is switched off", {object.ID()});
    }
    KeepItem(object.ID(), std::move(part), "clip " + NameOf(clip));
    KeepMedia(clip, object);
}

/// References that other programs have written, or have added to, are kept as they are.
void OtioObjects::KeepMedia(const Json &clip, const SequenceObject &object)
{
    const OtioReference active = ActiveReferenceOf(clip);
    if (!active.json->is_object())
        return;
    const Json &several = MemberOf(clip, "media_references");
    Json references = several.is_object() ? several : Json{{active.key, *active.json}};
    const Json &own = OwnMetadataOf(*active.json);
    const bool isOwn = own.is_object() && !own.contains(kForeignKey);
    Json &metadata = references[active.key]["metadata"];
    if (!metadata.is_object())
        metadata = Json::object();
    metadata.erase(kOwnKey);
    const auto asset = object.Asset(std::as_const(project_).Assets());
    if (!asset || (isOwn && metadata.empty() && references.size() == 1))
        return;
    kept_.Keep(object.ID(), kKeptMedia,
               {{"asset", asset->ID().ToNarrowString()},
                {"file", ToUtf8(FileOf(*asset))},
                {"active", active.key},
                {"references", std::move(references)}});
}

void OtioObjects::KeepItem(const kytl::KyID &id, Json part, const NarrowString &name)
{
    if (HasUnknown(part))
        TellKept(options_, "effects or markers of " + name, {id});
    kept_.Keep(id, kKeptItem, std::move(part));
}

/// No text says how large the picture is: it is that of the first clip that has one.
void OtioObjects::TakePictureSize()
{
    AudioVideoSettings &settings = sequence_->Settings();
    for (const OtioPlannedTrack &track : plan_.Tracks())
        for (const OtioPlannedClip &clip : track.clips) {
            const auto asset = objects_.at(&clip)->Asset(std::as_const(project_).Assets());
            const auto *media = dynamic_cast<const MediaAsset *>(asset.get());
            const auto video = media ? media->VideoStream() : nullptr;
            if (!video || video->Width() <= 0 || video->Height() <= 0)
                continue;
            settings.SetWidth(video->Width());
            settings.SetHeight(video->Height());
            settings.SetPixelAspectRatio(video->AspectRatio());
            settings.SetFields(video->FieldsType());
            return;
        }
    Tell(options_, LoadEntry::Severity::Warning,
         "no clip can be asked how large the picture is: " + std::to_string(settings.Width()) + " x " +
             std::to_string(settings.Height()));
}

} // namespace marlet::project
