// What a SequenceWork sees to at its end.

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/operations/sequence/SequenceWork.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/AssetLength.h>

#include <cmath>
#include <optional>

namespace marlet::project
{

namespace
{

using Object = SequenceWork::Object;

double Pace(const AbstractSequenceObject &object)
{
    const double speed = object.Speed();
    return std::isfinite(speed) && speed > 0 ? speed : 1;
}

ObjectEnd Opposite(ObjectEnd end)
{
    return end == ObjectEnd::Head ? ObjectEnd::Tail : ObjectEnd::Head;
}

bool IsOnTrack(const Object &object)
{
    return !object->ParentTrackID().IsNull();
}

} // namespace

void SequenceWork::Commit()
{
    LinkTails();
    // A transition that goes changes no frames, so this list does not grow here.
    for (const Object &object : changed_) {
        if (!IsOnTrack(object))
            continue;
        RequireFree(object);
        SettleTransitions(object);
    }
    for (const Object &object : showing_)
        if (IsOnTrack(object))
            RequireAssetFramesOf(*object);
    edit_.Commit();
}

void SequenceWork::RequireFree(const Object &object) const
{
    const Track track = TrackOf(object);
    for (const Object &other : track->Objects().FindInRange(object->StartFrame(), object->EndFrame()))
        if (other != object)
            throw NotFree(*track, object->StartFrame(), object->EndFrame(), *other);
}

void SequenceWork::RequireAssetFramesOf(const AbstractSequenceObject &object) const
{
    const std::shared_ptr<AbstractAsset> asset = AssetOf(object);
    if (!asset || !HasFrames(asset->Type()))
        return;
    const std::optional<int> length = AssetLength(*asset, sequence_->Settings().FrameRate());
    const long long start = object.AssetInstanceStart();
    const long long end = start + AssetFrames(object, object.Length());
    if (start < 0 || (length && end > *length))
        throw OperationException("The " + SpanText(start, end) + " of asset " + Quoted(asset->Name()) +
                                 " are not all there" + (length ? ": it has " + CountedFrames(*length) : ""));
}

void SequenceWork::Lose(TransitionPointer transition, const Object &holder)
{
    edit_.Touch(transition);
    for (const Object &object : {holder, sequence_->FindObjectByID(transition->FromObject()),
                                 sequence_->FindObjectByID(transition->ToObject())}) {
        if (!object ||
            (object->IncomingTransition() != transition && object->OutgoingTransition() != transition))
            continue;
        edit_.Touch(object);
        if (object->IncomingTransition() == transition)
            object->ClearIncomingTransition();
        if (object->OutgoingTransition() == transition)
            object->ClearOutgoingTransition();
    }
    transition->ClearFromObject();
    transition->ClearToObject();
}

void SequenceWork::LoseShared(const Object &object, ObjectEnd end)
{
    if (const TransitionPointer &transition = TransitionAt(*object, end); transition && IsShared(*transition))
        Lose(transition, object);
}

/// Whether a shared transition is that of two objects that meet.
bool SequenceWork::IsInOrder(const Object &object, ObjectEnd end, const TransitionPointer &transition) const
{
    const Object other =
        sequence_->FindObjectByID(end == ObjectEnd::Head ? transition->FromObject() : transition->ToObject());
    return other && TransitionAt(*other, Opposite(end)) == transition &&
           other->ParentTrackID() == object->ParentTrackID() &&
           (end == ObjectEnd::Head ? other->EndFrame() == object->StartFrame()
                                   : other->StartFrame() == object->EndFrame());
}

void SequenceWork::SettleTransitions(const Object &object)
{
    for (const ObjectEnd end : {ObjectEnd::Head, ObjectEnd::Tail})
        if (const TransitionPointer &transition = TransitionAt(*object, end);
            transition && IsShared(*transition) && !IsInOrder(object, end, transition))
            Lose(transition, object);
    if (object->IncomingTransition() && FramesIntoHead(*object) > object->Length())
        Lose(object->IncomingTransition(), object);
    if (object->OutgoingTransition() && FramesIntoTail(*object) > RoomFor(*object, ObjectEnd::Tail))
        Lose(object->OutgoingTransition(), object);
}

void SequenceWork::LinkTails()
{
    for (auto cut = cuts_.begin(); cut != cuts_.end(); ++cut)
        for (auto other = std::next(cut); other != cuts_.end(); ++other)
            if (cut->frame == other->frame && AreLinked(*cut->head, *other->head) && IsOnTrack(cut->tail) &&
                IsOnTrack(other->tail))
                Link(cut->tail, other->tail);
}

const std::shared_ptr<Transition> &TransitionAt(const AbstractSequenceObject &object, ObjectEnd end)
{
    return end == ObjectEnd::Head ? object.IncomingTransition() : object.OutgoingTransition();
}

bool IsShared(const Transition &transition)
{
    return !transition.FromObject().IsNull() && !transition.ToObject().IsNull();
}

long long RoomFor(const AbstractSequenceObject &object, ObjectEnd end)
{
    return object.Length() - (end == ObjectEnd::Head ? FramesIntoTail(object) : FramesIntoHead(object));
}

long long AssetFrames(const AbstractSequenceObject &object, long long frames)
{
    return std::llround(static_cast<double>(frames) * Pace(object));
}

long long FramesFromAsset(const AbstractSequenceObject &object, long long assetFrames)
{
    // A quotient that should be whole may come out a little below.
    constexpr double kTolerance = 1e-9;
    return static_cast<long long>(std::floor(static_cast<double>(assetFrames) / Pace(object) + kTolerance));
}

int Frame(long long frame)
{
    if (frame != static_cast<int>(frame))
        throw OperationException("Frame " + std::to_string(frame) + " is out of reach");
    return static_cast<int>(frame);
}

std::string SpanText(long long start, long long end)
{
    return "frames " + std::to_string(start) + " to " + std::to_string(end);
}

OperationException NotFree(const AbstractSequenceTrack &track, long long start, long long end,
                           const AbstractSequenceObject &other)
{
    return OperationException("The " + SpanText(start, end) + " of track " + Quoted(track.Name()) +
                              " are not free: " + Quoted(other.Name()) + " has " +
                              SpanText(other.StartFrame(), other.EndFrame()));
}

} // namespace marlet::project
