#include <marlet/operations/sequence/SequenceTrimming.h>

#include <marlet/animation/PropertyManager.h>
#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/operations/sequence/SequenceRoom.h>
#include <marlet/operations/sequence/SequenceWork.h>

#include <algorithm>
#include <cmath>

namespace marlet::project
{

namespace
{

using Object = SequenceWork::Object;
using Track = SequenceWork::Track;

void TrimHeadWithRipple(SequenceWork &work, const Object &object, long long by)
{
    const long long start = object->StartFrame();
    // Later first, so that no frame is ever before the sequence.
    if (by < 0)
        work.ShiftFrom(object, -by);
    work.Trim(object, object->StartFrame() + by, object->EndFrame());
    if (object->StartFrame() != start)
        work.ShiftFrom(object, start - object->StartFrame());
}

/// Sets the end of an object, whatever it shows, and moves what comes behind.
void SetEndWithRipple(SequenceWork &work, const Object &object, long long end)
{
    const long long by = end - object->EndFrame();
    if (by > 0)
        work.ShiftBehind(object, by);
    work.SetFrames(object, object->StartFrame(), end);
    if (by < 0)
        work.ShiftBehind(object, by);
}

void TrimWithRipple(SequenceWork &work, const std::vector<Object> &group, long long headBy, long long tailBy,
                    const TrackChoice &ripple)
{
    const std::vector<Track> tracks = work.TracksOfGroup(group);
    const long long start = group[0]->StartFrame();
    const long long end = group[0]->EndFrame();
    for (const Object &member : group)
        SetEndWithRipple(work, member, member->EndFrame() + tailBy);
    RippleOthers(work, ripple, tracks, end, tailBy);
    for (const Object &member : group)
        TrimHeadWithRipple(work, member, headBy);
    RippleOthers(work, ripple, tracks, start + std::max(0LL, headBy), -headBy);
}

void Roll(SequenceWork &work, const Object &from, const Object &to, long long frame)
{
    work.Trim(from, from->StartFrame(), frame);
    work.Trim(to, frame, to->EndFrame());
}

void Slide(SequenceWork &work, const Object &object, int frames)
{
    const Track track = work.TrackOf(object);
    const Object before = NeighbourAt(*track, object, ObjectEnd::Head);
    const Object behind = NeighbourAt(*track, object, ObjectEnd::Tail);
    if (before)
        work.Trim(before, before->StartFrame(), static_cast<long long>(before->EndFrame()) + frames);
    if (behind)
        work.Trim(behind, static_cast<long long>(behind->StartFrame()) + frames, behind->EndFrame());
    work.MoveTo(object, track, static_cast<long long>(object->StartFrame()) + frames);
}

void RequireSteadySpeed(const AbstractSequenceObject &object)
{
    if (!object.Properties().IsStatic("speed"))
        throw OperationException("The speed of " + Quoted(object.Name()) + " is animated");
}

/// The length at another speed.
long long LengthAtSpeed(SequenceWork &work, const Object &object, double speed)
{
    const long long length = object->Length();
    const long long assetFrames = AssetFrames(*object, length);
    work.Edit().Touch(object, "speed");
    object->SetSpeed(speed);
    return HasFrames(object->AssetType()) ? std::max(1LL, FramesFromAsset(*object, assetFrames)) : length;
}

} // namespace

void TrimObject(const std::shared_ptr<Project> &project, const Object &object, long long start, long long end,
                Partner partner, const TrackChoice &ripple)
{
    SequenceWork work(project, u"Trim");
    const std::vector<Object> group = work.Group(object, partner);
    const long long headBy = start - object->StartFrame();
    const long long tailBy = end - object->EndFrame();
    if (!ripple.IsNone())
        TrimWithRipple(work, group, headBy, tailBy, ripple);
    else
        for (const Object &member : group)
            work.Trim(member, member->StartFrame() + headBy, member->EndFrame() + tailBy);
    work.Commit();
}

void RollCut(const std::shared_ptr<Project> &project, const Object &object, ObjectEnd end, int frame,
             Partner partner)
{
    SequenceWork work(project, u"Roll");
    const Object other = NeighbourAt(*work.TrackOf(object), object, end);
    if (!other)
        throw OperationException("Object " + Quoted(object->Name()) + " meets no other one there");
    const Object &from = end == ObjectEnd::Tail ? object : other;
    const Object &to = end == ObjectEnd::Tail ? other : object;
    const int cut = to->StartFrame();
    const Object fromPartner = PartnerOf(*work.Sequence(), *from);
    const Object toPartner = PartnerOf(*work.Sequence(), *to);
    Roll(work, from, to, frame);
    if (partner == Partner::GoesAlong && fromPartner && toPartner && fromPartner != to &&
        fromPartner->ParentTrackID() == toPartner->ParentTrackID() && fromPartner->EndFrame() == cut &&
        toPartner->StartFrame() == cut)
        Roll(work, fromPartner, toPartner, frame);
    work.Commit();
}

void SlipObject(const std::shared_ptr<Project> &project, const Object &object, int frames, Partner partner)
{
    SequenceWork work(project, u"Slip");
    const std::vector<Object> group = work.Group(object, partner);
    if (!HasFrames(object->AssetType()))
        throw OperationException("Object " + Quoted(object->Name()) +
                                 " is a still, which has no other frames");
    for (const Object &member : group)
        if (HasFrames(member->AssetType()))
            work.Slip(member, frames);
    work.Commit();
}

void SlideObject(const std::shared_ptr<Project> &project, const Object &object, int frames, Partner partner)
{
    SequenceWork work(project, u"Slide");
    for (const Object &member : work.Group(object, partner))
        Slide(work, member, frames);
    work.Commit();
}

void SetObjectSpeed(const std::shared_ptr<Project> &project, const Object &object, double speed,
                    Partner partner, const TrackChoice &ripple)
{
    SequenceWork work(project, u"Set speed");
    if (!(std::isfinite(speed) && speed > 0))
        throw OperationException("A speed must be above 0");
    const std::vector<Object> group = work.Group(object, partner);
    const long long end = object->EndFrame();
    for (const Object &member : group) {
        RequireSteadySpeed(*member);
        const long long memberEnd = member->StartFrame() + LengthAtSpeed(work, member, speed);
        if (ripple.IsNone())
            work.SetFrames(member, member->StartFrame(), memberEnd);
        else
            SetEndWithRipple(work, member, memberEnd);
    }
    RippleOthers(work, ripple, work.TracksOfGroup(group), end, object->EndFrame() - end);
    work.Commit();
}

} // namespace marlet::project
