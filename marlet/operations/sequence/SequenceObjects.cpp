#include <marlet/operations/sequence/SequenceObjects.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/Transition.h>
#include <marlet/operations/sequence/SequenceWork.h>

namespace marlet::project
{

namespace
{

using Object = SequenceWork::Object;
using Track = SequenceWork::Track;

bool IsInside(const AbstractSequenceObject &object, int frame)
{
    return object.StartFrame() < frame && frame < object.EndFrame();
}

bool GoesOnWith(const AbstractSequenceObject &head, const AbstractSequenceObject &tail)
{
    if (head.AssetID() != tail.AssetID() || head.Speed() != tail.Speed())
        return false;
    return !HasFrames(head.AssetType()) ||
           head.AssetInstanceStart() + AssetFrames(head, head.Length()) == tail.AssetInstanceStart();
}

/// What the object meets at its tail and goes on with it, or an empty pointer.
Object Continuation(SequenceWork &work, const Object &object)
{
    Object next = NeighbourAt(*work.TrackOf(object), object, ObjectEnd::Tail);
    return next && GoesOnWith(*object, *next) ? next : nullptr;
}

void Join(SequenceWork &work, const Object &head, const Object &tail)
{
    if (const SequenceWork::TransitionPointer between = head->OutgoingTransition())
        work.Lose(between, head);
    const int end = tail->EndFrame();
    work.Edit().Touch(head);
    if (const SequenceWork::TransitionPointer transition = tail->OutgoingTransition()) {
        work.Edit().Touch(transition);
        work.Edit().Touch(tail);
        tail->ClearOutgoingTransition();
        head->SetOutgoingTransition(transition);
        transition->SetFromObject(head->ID());
    }
    work.Take(tail);
    work.SetFrames(head, head->StartFrame(), end);
}

} // namespace

void MoveObject(const std::shared_ptr<Project> &project, const Object &object, long long start,
                const Track &track, Partner partner)
{
    SequenceWork work(project, u"Move object");
    const Track from = work.TrackOf(object);
    if (track && track->Type() != from->Type())
        throw OperationException("Track " + Quoted(track->Name()) + " is for " +
                                 (track->Type() == TrackType::Video ? "pictures" : "sounds"));
    const long long by = start - object->StartFrame();
    for (const Object &member : work.Group(object, partner))
        work.MoveTo(member, member == object && track ? track : work.TrackOf(member),
                    member->StartFrame() + by);
    work.Commit();
}

std::vector<Object> SplitObject(const std::shared_ptr<Project> &project, const Object &object, int frame,
                                Partner partner)
{
    SequenceWork work(project, u"Split");
    const std::vector<Object> group = work.Group(object, partner);
    if (!IsInside(*object, frame))
        throw OperationException("Frame " + std::to_string(frame) + " does not split " +
                                 Quoted(object->Name()) + ", which has " +
                                 SpanText(object->StartFrame(), object->EndFrame()));
    std::vector<Object> tails;
    for (const Object &member : group)
        if (IsInside(*member, frame))
            tails.push_back(work.Cut(member, frame));
    work.Commit();
    return tails;
}

void JoinObjects(const std::shared_ptr<Project> &project, const Object &object, Partner partner)
{
    SequenceWork work(project, u"Join");
    const std::vector<Object> group = work.Group(object, partner);
    if (!Continuation(work, object))
        throw OperationException("Nothing goes on with " + Quoted(object->Name()) + " at its tail");
    for (const Object &member : group)
        if (const Object next = Continuation(work, member))
            Join(work, member, next);
    work.Commit();
}

void LinkObjects(const std::shared_ptr<Project> &project, const Object &a, const Object &b)
{
    SequenceWork work(project, u"Link");
    work.TrackOf(a);
    work.TrackOf(b);
    if (a == b)
        throw OperationException("Object " + Quoted(a->Name()) + " cannot be its own partner");
    work.Link(a, b);
    work.Commit();
}

void UnlinkObject(const std::shared_ptr<Project> &project, const Object &object)
{
    SequenceWork work(project, u"Unlink");
    work.TrackOf(object);
    if (object->LinkedObjectID().IsNull())
        throw OperationException("Object " + Quoted(object->Name()) + " has no partner");
    work.Unlink(object);
    work.Commit();
}

} // namespace marlet::project
