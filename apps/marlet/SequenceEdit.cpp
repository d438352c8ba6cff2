#include "SequenceEdit.h"

#include "Failure.h"
#include "Output.h"

#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/CompositionAsset.h>
#include <marlet/project/MediaAsset.h>
#include <marlet/project/MediaAudioStream.h>
#include <marlet/project/MediaVideoStream.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::tool
{

using namespace project;

namespace
{

bool IsOneOf(const ObjectPointer &object, const std::vector<ObjectPointer> &objects)
{
    return std::find(objects.begin(), objects.end(), object) != objects.end();
}

std::string SpanText(long long start, long long end)
{
    return "frames " + std::to_string(start) + " to " + std::to_string(end);
}

int Frame(long long frame)
{
    if (frame != static_cast<int>(frame))
        throw Failure("Frame " + std::to_string(frame) + " is out of reach");
    return static_cast<int>(frame);
}

void RequireKind(const AbstractAsset &asset, TrackType kind)
{
    // What a file holds that is not there is unknown.
    if (asset.IsOffline() || (kind == TrackType::Video ? asset.HasVideo() : asset.HasAudio()))
        return;
    throw Failure("Asset " + Quoted(asset.Name()) + " has no " +
                  (kind == TrackType::Video ? "picture" : "sound"));
}

void Link(AbstractSequenceObject &a, AbstractSequenceObject &b)
{
    a.SetLinkedObjectID(b.ID());
    b.SetLinkedObjectID(a.ID());
}

} // namespace

SequenceEdit::SequenceEdit(ProjectPointer project)
    : project_(std::move(project)), sequence_(SequenceOf(*project_))
{
}

TrackPointer SequenceEdit::TrackOf(const AbstractSequenceObject &object) const
{
    for (const TrackPointer &track : TracksOf(*sequence_))
        for (const ObjectPointer &candidate : ObjectsOf(*track))
            if (candidate.get() == &object)
                return track;
    throw Failure("Object " + Quoted(object.Name()) + " is on no track");
}

std::vector<ObjectPointer> SequenceEdit::Group(const ObjectPointer &object, Partner partner) const
{
    std::vector<ObjectPointer> group{object};
    if (ObjectPointer other = partner == Partner::GoesAlong ? PartnerOf(*sequence_, *object) : nullptr)
        group.push_back(std::move(other));
    return group;
}

void SequenceEdit::RequireRoom(const AbstractSequenceTrack &track, long long start, long long end,
                               const std::vector<ObjectPointer> &passedOver) const
{
    const int frameCount = sequence_->Settings().FrameCount();
    if (start < 0 || end > frameCount)
        throw Failure("The " + SpanText(start, end) + " are not all in the sequence, which has " +
                      Counted(static_cast<std::size_t>(std::max(0, frameCount)), "frame"));
    if (start >= end)
        throw Failure("No frame would be left: the start is " + std::to_string(start) + ", the end " +
                      std::to_string(end));
    for (const ObjectPointer &other :
         track.Objects().FindInRange(static_cast<int>(start), static_cast<int>(end)))
        if (!IsOneOf(other, passedOver))
            throw Failure("The " + SpanText(start, end) + " of track " + Quoted(track.Name()) +
                          " are not free: " + Quoted(other->Name()) + " has " +
                          SpanText(other->StartFrame(), other->EndFrame()));
}

/// In frames of the sequence, whatever the asset's own rate.
std::optional<int> SequenceEdit::LengthOf(const AbstractAsset &asset) const
{
    if (const auto *composition = dynamic_cast<const CompositionAsset *>(&asset))
        return composition->Settings().FrameCount();
    const auto *media = dynamic_cast<const MediaAsset *>(&asset);
    if (!media)
        return std::nullopt;
    const double rate = sequence_->Settings().FrameRate();
    if (const auto video = media->VideoStream())
        return video->FrameCount(rate);
    if (const auto audio = media->AudioStream())
        return audio->FrameCount(rate);
    return std::nullopt;
}

/// At another speed than 1 an asset lasts shorter or longer, which objects leave to the host's player.
void SequenceEdit::RequireAssetFrames(const AbstractSequenceObject &object) const
{
    const auto asset = object.Asset(project_->Assets());
    if (!asset || !HasFrames(asset->Type()))
        return;
    const std::optional<int> length = LengthOf(*asset);
    const long long end = static_cast<long long>(object.AssetInstanceStart()) + object.Length();
    if (object.AssetInstanceStart() < 0 || (length && object.Speed() == 1 && end > *length))
        throw Failure(
            "The " + SpanText(object.AssetInstanceStart(), end) + " of asset " + Quoted(asset->Name()) +
            " are not all there" +
            (length ? ": it has " + Counted(static_cast<std::size_t>(std::max(0, *length)), "frame") : ""));
}

ObjectPointer SequenceEdit::Place(const Insertion &insertion, const TrackPointer &track, long long length)
{
    RequireKind(*insertion.asset, track->Type());
    RequireRoom(*track, insertion.start, insertion.start + length, {});
    ObjectPointer object;
    if (track->Type() == TrackType::Video)
        object = VisualObject::Create(insertion.asset, sequence_);
    else
        object = AudioObject::Create(insertion.asset, sequence_);
    object->SetParentTrackID(track->ID());
    object->SetAssetInstanceStart(insertion.assetStart);
    object->SetEndFrame(static_cast<int>(insertion.start + length));
    track->Objects().Insert(object, insertion.start);
    RequireAssetFrames(*object);
    return object;
}

std::vector<ObjectPointer> SequenceEdit::Insert(const Insertion &insertion)
{
    const std::optional<int> whole = LengthOf(*insertion.asset);
    if (insertion.assetStart < 0 || (whole && insertion.assetStart >= *whole))
        throw Failure(
            "Asset " + Quoted(insertion.asset->Name()) + " has no frame " +
            std::to_string(insertion.assetStart) +
            (whole ? ", only " + Counted(static_cast<std::size_t>(std::max(0, *whole)), "frame") : ""));
    if (!insertion.length && !whole)
        throw Failure("Asset " + Quoted(insertion.asset->Name()) +
                      " has no length of its own: give one with --length");
    const long long length =
        insertion.length ? *insertion.length
                         : static_cast<long long>(*whole) - static_cast<long long>(insertion.assetStart);
    std::vector<ObjectPointer> placed{Place(insertion, insertion.track, length)};
    if (insertion.soundTrack) {
        placed.push_back(Place(insertion, insertion.soundTrack, length));
        Link(*placed[0], *placed[1]);
    }
    return placed;
}

void SequenceEdit::MoveOne(const ObjectPointer &object, long long start, const TrackPointer &track,
                           const std::vector<ObjectPointer> &group)
{
    const TrackPointer from = TrackOf(*object);
    if (from == track && object->StartFrame() == start)
        return;
    if (from->Type() != track->Type())
        throw Failure("Track " + Quoted(track->Name()) + " is for " +
                      (track->Type() == TrackType::Video ? "pictures" : "sounds"));
    const long long end = start + object->Length();
    RequireRoom(*track, start, end, group);
    LoseSharedTransition(*object, ObjectEnd::Head);
    LoseSharedTransition(*object, ObjectEnd::Tail);
    if (from == track) {
        track->Objects().Move(object, static_cast<int>(start), true);
        return;
    }
    from->Objects().Remove(object);
    object->SetParentTrackID(track->ID());
    object->SetEndFrame(static_cast<int>(end));
    track->Objects().Insert(object, static_cast<int>(start));
}

void SequenceEdit::Move(const ObjectPointer &object, long long start, const TrackPointer &track,
                        Partner partner)
{
    const long long by = start - object->StartFrame();
    const std::vector<ObjectPointer> group = Group(object, partner);
    for (const ObjectPointer &member : group)
        MoveOne(member, member->StartFrame() + by, member == object && track ? track : TrackOf(*member),
                group);
}

void SequenceEdit::Remove(const ObjectPointer &object, Partner partner)
{
    const std::vector<ObjectPointer> group = Group(object, partner);
    if (const ObjectPointer left = PartnerOf(*sequence_, *object); left && !IsOneOf(left, group))
        left->ClearLinkedObject();
    for (const ObjectPointer &member : group) {
        LoseSharedTransition(*member, ObjectEnd::Head);
        LoseSharedTransition(*member, ObjectEnd::Tail);
        TrackOf(*member)->Objects().Remove(member);
        member->ClearParentTrackID();
        member->ClearLinkedObject();
    }
}

void SequenceEdit::TrimOne(const ObjectPointer &object, long long start, long long end,
                           const std::vector<ObjectPointer> &group)
{
    const TrackPointer track = TrackOf(*object);
    RequireRoom(*track, start, end, group);
    const bool growsLonger = start < object->StartFrame() || end > object->EndFrame();
    const long long headBy = start - object->StartFrame();
    if (headBy != 0) {
        LoseSharedTransition(*object, ObjectEnd::Head);
        if (HasFrames(object->AssetType()))
            object->SetAssetInstanceStart(Frame(object->AssetInstanceStart() + headBy));
        track->Objects().Move(object, static_cast<int>(start), false);
    }
    if (end != object->EndFrame()) {
        LoseSharedTransition(*object, ObjectEnd::Tail);
        object->SetEndFrame(static_cast<int>(end));
    }
    if (growsLonger)
        RequireAssetFrames(*object);
    LoseTransitionsThatDoNotFit(*object);
}

void SequenceEdit::Trim(const ObjectPointer &object, long long start, long long end, Partner partner)
{
    const long long headBy = start - object->StartFrame();
    const long long tailBy = end - object->EndFrame();
    const std::vector<ObjectPointer> group = Group(object, partner);
    for (const ObjectPointer &member : group)
        TrimOne(member, member->StartFrame() + headBy, member->EndFrame() + tailBy, group);
}

ObjectPointer SequenceEdit::SplitOne(const ObjectPointer &object, int frame)
{
    ObjectPointer tail;
    if (const auto visual = std::dynamic_pointer_cast<VisualObject>(object))
        tail = VisualObject::Copy(visual, false);
    else
        tail = AudioObject::Copy(std::dynamic_pointer_cast<AudioObject>(object), false);
    const TrackPointer track = TrackOf(*object);
    tail->SetParentTrackID(track->ID());
    if (HasFrames(object->AssetType()))
        tail->SetAssetInstanceStart(
            Frame(static_cast<long long>(object->AssetInstanceStart()) + frame - object->StartFrame()));
    object->SetEndFrame(frame);
    track->Objects().Insert(tail, frame);
    if (const TransitionPointer transition = object->OutgoingTransition()) {
        object->ClearOutgoingTransition();
        tail->SetOutgoingTransition(transition);
        transition->SetFromObject(tail->ID());
    }
    LoseTransitionsThatDoNotFit(*object);
    LoseTransitionsThatDoNotFit(*tail);
    return tail;
}

std::vector<ObjectPointer> SequenceEdit::Split(const ObjectPointer &object, int frame, Partner partner)
{
    const auto isInside = [frame](const AbstractSequenceObject &of) {
        return of.StartFrame() < frame && frame < of.EndFrame();
    };
    if (!isInside(*object))
        throw Failure("Frame " + std::to_string(frame) + " does not split " + Quoted(object->Name()) +
                      ", which has " + SpanText(object->StartFrame(), object->EndFrame()));
    std::vector<ObjectPointer> tails;
    for (const ObjectPointer &member : Group(object, partner))
        if (isInside(*member))
            tails.push_back(SplitOne(member, frame));
    if (tails.size() == 2)
        Link(*tails[0], *tails[1]);
    return tails;
}

} // namespace marlet::tool
