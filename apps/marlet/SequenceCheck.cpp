#include "SequenceCheck.h"

#include "Timeline.h"

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <unordered_set>

namespace marlet::tool
{

using namespace project;

namespace
{

constexpr const char *kDangling = "dangling ID";
constexpr const char *kRepeated = "repeated ID";
constexpr const char *kLink = "one-sided link";
constexpr const char *kTransition = "transition";
constexpr const char *kFrames = "frames";

/// One of the two ends of a transition, as an object sees it.
struct End {
    const char *slot;
    const TransitionPointer &transition;
    const kytl::KyID &here;  ///< what the transition says of the object
    const kytl::KyID &other; ///< and of the one at its other end
    bool isIncoming;
};

class SequenceChecker
{
public:
    explicit SequenceChecker(const Project &project) : project_(project), sequence_(*project.Sequence()) {}

    std::vector<Finding> Run()
    {
        for (const TrackPointer &track : TracksOf(sequence_)) {
            place_ = "track \"" + ToUtf8(track->Name()) + "\"";
            if (!ids_.insert(track->ID()).second)
                Add(kRepeated, track->ID().ToNarrowString());
            CheckObjects(*track);
        }
        return std::move(findings_);
    }

private:
    void Add(const char *kind, const std::string &what) { findings_.push_back({kind, place_, what}); }

    void CheckObjects(const AbstractSequenceTrack &track)
    {
        const std::string trackPlace = place_;
        long long covered = 0;
        for (const ObjectPointer &object : ObjectsOf(track)) {
            place_ = "object \"" + ToUtf8(object->Name()) + "\" of " + trackPlace;
            if (!ids_.insert(object->ID()).second)
                Add(kRepeated, object->ID().ToNarrowString());
            CheckFrames(*object, covered);
            covered = std::max<long long>(covered, object->EndFrame());
            CheckOwners(*object, track);
            CheckLink(*object);
            if (const TransitionPointer &in = object->IncomingTransition())
                CheckTransition(*object, {"incoming", in, in->ToObject(), in->FromObject(), true});
            if (const TransitionPointer &out = object->OutgoingTransition())
                CheckTransition(*object, {"outgoing", out, out->FromObject(), out->ToObject(), false});
        }
    }

    void CheckFrames(const AbstractSequenceObject &object, long long covered)
    {
        const std::string start = std::to_string(object.StartFrame());
        if (object.EndFrame() <= object.StartFrame())
            Add(kFrames, "it ends on " + std::to_string(object.EndFrame()) + " and starts on " + start);
        if (object.StartFrame() < 0)
            Add(kFrames, "it starts on " + start + ", before the sequence");
        else if (object.StartFrame() < covered)
            Add(kFrames,
                "it starts on " + start + ", where there is another object up to " + std::to_string(covered));
    }

    void CheckOwners(const AbstractSequenceObject &object, const AbstractSequenceTrack &track)
    {
        const kytl::KyID &trackID = object.ParentTrackID();
        if (trackID != track.ID())
            Add(kDangling, "the track " + trackID.ToNarrowString() +
                               (sequence_.FindSequenceTrackByID(trackID) ? " that it names is another one"
                                                                         : " does not exist"));
        if (object.ParentSequenceID() != sequence_.ID())
            Add(kDangling, "the sequence " + object.ParentSequenceID().ToNarrowString() + " does not exist");
        if (!object.Asset(project_.Assets()))
            Add(kDangling, "the asset " + object.AssetID().ToNarrowString() + " does not exist");
    }

    void CheckLink(const AbstractSequenceObject &object)
    {
        const kytl::KyID &link = object.LinkedObjectID();
        if (link.IsNull())
            return;
        const ObjectPointer partner = sequence_.FindObjectByID(link);
        if (!partner)
            Add(kDangling, "the linked object " + link.ToNarrowString() + " does not exist");
        else if (partner.get() == &object)
            Add(kLink, "it is linked to itself");
        else if (!AreLinked(object, *partner))
            Add(kLink, "the linked object \"" + ToUtf8(partner->Name()) + "\" is not linked to it");
    }

    void CheckTransition(const AbstractSequenceObject &object, const End &end)
    {
        const std::string name =
            std::string("the ") + end.slot + " transition " + TransitionName(*end.transition);
        if (end.here != object.ID())
            Add(kTransition, name + " names " + ObjectName(sequence_, end.here) + " in its place");
        if (end.transition->Length() < 1)
            Add(kTransition, name + " has " + std::to_string(end.transition->Length()) + " frames");
        if (end.other.IsNull())
            return;
        const ObjectPointer other = sequence_.FindObjectByID(end.other);
        if (!other) {
            Add(kDangling, name + ": the object " + end.other.ToNarrowString() + " does not exist");
            return;
        }
        const TransitionPointer &back =
            end.isIncoming ? other->OutgoingTransition() : other->IncomingTransition();
        const bool meet = end.isIncoming ? other->EndFrame() == object.StartFrame()
                                         : other->StartFrame() == object.EndFrame();
        if (back != end.transition)
            Add(kTransition, name + " is not that of \"" + ToUtf8(other->Name()) + "\", which it names");
        else if (other->ParentTrackID() != object.ParentTrackID() || !meet)
            Add(kTransition,
                name + " is shared with \"" + ToUtf8(other->Name()) + "\", which does not meet it");
    }

    const Project &project_;
    const EditorSequence &sequence_;
    std::string place_;
    std::unordered_set<kytl::KyID> ids_;
    std::vector<Finding> findings_;
};

} // namespace

std::vector<Finding> CheckSequence(const Project &project)
{
    return project.Sequence() ? SequenceChecker(project).Run() : std::vector<Finding>();
}

} // namespace marlet::tool
