#include <marlet/operations/sequence/SequenceWork.h>

#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/AudioObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/operations/assets/InstanceChange.h>
#include <marlet/operations/curves/KeyFrameShift.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/Project.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

using Object = SequenceWork::Object;

/// The place of the first object that starts on the frame or behind it.
unsigned int PositionAt(const AbstractSequenceTrack &track, long long frame)
{
    const SequenceObjectList &objects = track.Objects();
    unsigned int first = 0;
    unsigned int count = objects.Count();
    while (count > 0) {
        const unsigned int half = count / 2;
        if (objects[first + half]->StartFrame() < frame) {
            first += half + 1;
            count -= half + 1;
        } else {
            count = half;
        }
    }
    return first;
}

unsigned int PositionOf(const AbstractSequenceTrack &track, const Object &object)
{
    unsigned int position = PositionAt(track, object->StartFrame());
    while (track.Objects()[position] != object)
        ++position;
    return position;
}

} // namespace

std::shared_ptr<EditorSequence> RequireSequence(const Project &project)
{
    std::shared_ptr<EditorSequence> sequence = project.Sequence();
    if (!sequence)
        throw OperationException("The project has no sequence");
    return sequence;
}

std::shared_ptr<AbstractSequenceTrack> RequireTrackOf(const EditorSequence &sequence,
                                                      const std::shared_ptr<AbstractSequenceObject> &object)
{
    Require(object, "object");
    auto track = sequence.FindSequenceTrackByID(object->ParentTrackID());
    if (!track || track->Objects().GetByID(object->ID()) != object)
        throw OperationException("Object " + Quoted(object->Name()) + " is on no track");
    return track;
}

SequenceWork::SequenceWork(const std::shared_ptr<Project> &project, const WideString &label)
    : edit_(project, label), sequence_(RequireSequence(*project))
{
}

std::vector<Object> SequenceWork::Group(const Object &object, Partner partner) const
{
    TrackOf(object);
    std::vector<Object> group{object};
    if (Object other = partner == Partner::GoesAlong ? PartnerOf(*sequence_, *object) : nullptr)
        group.push_back(std::move(other));
    return group;
}

std::vector<SequenceWork::Track> SequenceWork::TracksOfGroup(const std::vector<Object> &group) const
{
    std::vector<Track> tracks;
    for (const Object &object : group)
        tracks.push_back(TrackOf(object));
    return tracks;
}

std::vector<SequenceWork::Track> SequenceWork::Chosen(const TrackChoice &choice,
                                                      const std::vector<Track> &also) const
{
    std::vector<Track> chosen;
    for (const Track &track : TracksOf(*sequence_))
        if (choice.Has(*track) || std::find(also.begin(), also.end(), track) != also.end())
            chosen.push_back(track);
    return chosen;
}

std::shared_ptr<AbstractAsset> SequenceWork::AssetOf(const AbstractSequenceObject &object) const
{
    return object.Asset(Document()->Assets());
}

std::shared_ptr<AbstractSequenceObject> CopyOf(const std::shared_ptr<AbstractSequenceObject> &object)
{
    if (const auto visual = std::dynamic_pointer_cast<VisualObject>(object))
        return VisualObject::Copy(visual, false);
    return AudioObject::Copy(std::dynamic_pointer_cast<AudioObject>(object), false);
}

void SequenceWork::RequireInside(long long start, long long end) const
{
    const int frameCount = sequence_->Settings().FrameCount();
    if (start < 0 || end > frameCount)
        throw OperationException("The " + SpanText(start, end) + " are not all in the sequence, which has " +
                                 CountedFrames(frameCount));
    if (start >= end)
        throw OperationException("No frame would be left: the start is " + std::to_string(start) +
                                 ", the end " + std::to_string(end));
}

void SequenceWork::Put(const Object &object, const Track &track, long long start, long long end)
{
    RequireInside(start, end);
    edit_.Touch(track, object);
    object->SetParentTrackID(track->ID());
    object->SetEndFrame(static_cast<int>(end));
    track->Objects().Insert(object, static_cast<int>(start));
    if (const std::shared_ptr<AbstractAsset> asset = AssetOf(*object))
        AddInstance(edit_, asset, object);
    changed_.push_back(object);
}

void SequenceWork::Take(const Object &object)
{
    const Track track = TrackOf(object);
    edit_.Touch(object);
    Unlink(object);
    LoseShared(object, ObjectEnd::Head);
    LoseShared(object, ObjectEnd::Tail);
    track->Objects().Remove(object);
    object->ClearParentTrackID();
    if (const std::shared_ptr<AbstractAsset> asset = AssetOf(*object))
        RemoveInstance(edit_, asset, object);
}

void SequenceWork::SetFrames(const Object &object, long long start, long long end)
{
    if (start == object->StartFrame() && end == object->EndFrame())
        return;
    RequireInside(start, end);
    if (end - start > object->Length())
        RequireAssetFrames(object);
    edit_.Touch(object);
    TrackOf(object)->Objects().Move(object, static_cast<int>(start), false);
    object->SetEndFrame(static_cast<int>(end));
    changed_.push_back(object);
}

void SequenceWork::MoveTo(const Object &object, const Track &track, long long start)
{
    const Track from = TrackOf(object);
    const long long end = start + object->Length();
    if (from == track) {
        SetFrames(object, start, end);
        return;
    }
    RequireInside(start, end);
    edit_.Touch(object);
    edit_.Touch(track, object);
    from->Objects().Remove(object);
    object->SetParentTrackID(track->ID());
    object->SetEndFrame(static_cast<int>(end));
    track->Objects().Insert(object, static_cast<int>(start));
    changed_.push_back(object);
}

/// Leaves what an object shows where it is while its start moves.
void SequenceWork::MoveContent(const Object &object, long long frames)
{
    if (frames == 0)
        return;
    if (HasFrames(object->AssetType()))
        object->SetAssetInstanceStart(Frame(object->AssetInstanceStart() + AssetFrames(*object, frames)));
    ShiftKeyFrames(edit_, object, -frames, sequence_->Settings().FrameRate());
}

void SequenceWork::Trim(const Object &object, long long start, long long end)
{
    const long long headBy = start - object->StartFrame();
    SetFrames(object, start, end);
    MoveContent(object, headBy);
}

void SequenceWork::Slip(const Object &object, long long frames)
{
    edit_.Touch(object);
    object->SetAssetInstanceStart(Frame(object->AssetInstanceStart() + frames));
    RequireAssetFrames(object);
}

Object SequenceWork::Cut(const Object &object, long long frame)
{
    const Track track = TrackOf(object);
    const int start = object->StartFrame();
    const int end = object->EndFrame();
    const Object tail = CopyOf(object);
    SetFrames(object, start, frame);
    Put(tail, track, frame, end);
    MoveContent(tail, frame - start);
    if (const TransitionPointer transition = object->OutgoingTransition()) {
        edit_.Touch(transition);
        object->ClearOutgoingTransition();
        tail->SetOutgoingTransition(transition);
        transition->SetFromObject(tail->ID());
    }
    cuts_.push_back({object, tail, static_cast<int>(frame)});
    return tail;
}

void SequenceWork::Clear(const Track &track, long long start, long long end)
{
    for (const Object &object : track->Objects().FindInRange(Frame(start), Frame(end))) {
        const int objectStart = object->StartFrame();
        const int objectEnd = object->EndFrame();
        if (objectStart < start) {
            if (objectEnd > end)
                Cut(object, end);
            SetFrames(object, objectStart, start);
        } else if (objectEnd > end) {
            Trim(object, end, objectEnd);
        } else {
            Take(object);
        }
    }
}

void SequenceWork::Open(const Track &track, long long frame, long long frames)
{
    if (const Object object = track->Objects().FindOnFrame(Frame(frame));
        object && object->StartFrame() < frame)
        Cut(object, frame);
    Shift(track, frame, frames);
}

void SequenceWork::Shift(const Track &track, long long frame, long long frames)
{
    ShiftPosition(track, PositionAt(*track, frame), frames);
}

void SequenceWork::ShiftFrom(const Object &object, long long frames)
{
    const Track track = TrackOf(object);
    ShiftPosition(track, PositionOf(*track, object), frames);
}

void SequenceWork::ShiftBehind(const Object &object, long long frames)
{
    const Track track = TrackOf(object);
    ShiftPosition(track, PositionOf(*track, object) + 1, frames);
}

void SequenceWork::ShiftPosition(const Track &track, unsigned int position, long long frames)
{
    const SequenceObjectList &objects = track->Objects();
    if (frames == 0 || position >= objects.Count())
        return;
    for (const Object &object : {objects[position], objects[objects.Count() - 1]})
        RequireInside(object->StartFrame() + frames, object->EndFrame() + frames);
    if (position > 0) {
        const Object &previous = objects[position - 1];
        const Object &first = objects[position];
        if (frames < 0 && first->StartFrame() + frames < previous->EndFrame())
            throw NotFree(*track, first->StartFrame() + frames, first->EndFrame() + frames, *previous);
        changed_.push_back(previous);
    }
    changed_.push_back(objects[position]);
    edit_.ShiftFrom(track, position, Frame(frames));
}

void SequenceWork::Link(const Object &a, const Object &b)
{
    for (const Object &object : {a, b}) {
        Unlink(object);
        edit_.Touch(object);
    }
    a->SetLinkedObjectID(b->ID());
    b->SetLinkedObjectID(a->ID());
}

void SequenceWork::Unlink(const Object &object)
{
    if (const Object partner = PartnerOf(*sequence_, *object)) {
        edit_.Touch(partner);
        partner->ClearLinkedObject();
    }
    if (object->LinkedObjectID().IsNull())
        return;
    edit_.Touch(object);
    object->ClearLinkedObject();
}

} // namespace marlet::project
