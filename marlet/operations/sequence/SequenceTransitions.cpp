#include <marlet/operations/sequence/SequenceTransitions.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/operations/sequence/SequenceWork.h>
#include <marlet/plugins/AbstractPlugin.h>
#include <marlet/project/AssetLength.h>
#include <marlet/project/AssetList.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace marlet::project
{

namespace
{

using Object = SequenceWork::Object;

constexpr long long kNoLimit = std::numeric_limits<int>::max();

/// The frames that an asset has beyond an end of the object.
long long Handle(const Project &project, const AbstractSequenceObject &object, ObjectEnd end)
{
    const std::shared_ptr<AbstractAsset> asset = object.Asset(project.Assets());
    if (!asset || !HasFrames(asset->Type()))
        return kNoLimit;
    const long long start = object.AssetInstanceStart();
    if (end == ObjectEnd::Head)
        return std::max(0LL, FramesFromAsset(object, start));
    const auto length = AssetLength(*asset, project.Sequence()->Settings().FrameRate());
    return length ? std::max(0LL, FramesFromAsset(object, *length - start) - object.Length()) : kNoLimit;
}

/// The objects at a cut; one of them may be missing.
struct CutEnds {
    CutEnds(const EditorSequence &sequence, const Object &object, ObjectEnd end, Sharing sharing)
    {
        const auto track = RequireTrackOf(sequence, object);
        const Object other = sharing == Sharing::WithNeighbour ? NeighbourAt(*track, object, end) : nullptr;
        from = end == ObjectEnd::Tail ? object : other;
        to = end == ObjectEnd::Head ? object : other;
    }

    long long Room(const Project &project) const
    {
        const long long before = from ? RoomFor(*from, ObjectEnd::Tail) : kNoLimit;
        const long long after = to ? RoomFor(*to, ObjectEnd::Head) : kNoLimit;
        if (!from || !to)
            return std::max(0LL, std::min(before, after));
        return std::max(0LL, std::min(2 * std::min(before, Handle(project, *to, ObjectEnd::Head)) + 1,
                                      2 * std::min(after, Handle(project, *from, ObjectEnd::Tail))));
    }

    Object from;
    Object to;
};

} // namespace

int TransitionRoom(const std::shared_ptr<Project> &project, const Object &object, ObjectEnd end,
                   Sharing sharing)
{
    Require(project, "project");
    const auto sequence = RequireSequence(*project);
    return Frame(std::min(kNoLimit, CutEnds(*sequence, object, end, sharing).Room(*project)));
}

std::shared_ptr<Transition> SetTransition(const std::shared_ptr<Project> &project, const Object &object,
                                          ObjectEnd end, const std::shared_ptr<AbstractPlugin> &plugin,
                                          std::optional<int> length, Sharing sharing)
{
    Require(plugin, "plug-in");
    SequenceWork work(project, u"Set transition");
    const CutEnds cut(*work.Sequence(), object, end, sharing);
    for (const auto &[holder, side] :
         {std::pair(cut.from, ObjectEnd::Tail), std::pair(cut.to, ObjectEnd::Head)}) {
        if (!holder)
            continue;
        if (const auto transition = TransitionAt(*holder, side))
            work.Lose(transition, holder);
        work.Edit().Touch(holder);
    }

    const long long room = cut.Room(*project);
    const long long half = std::llround(work.Sequence()->Settings().FrameRate() / 2);
    const long long wanted = length ? *length : std::min(room, std::max(1LL, half));
    if (wanted < 1 || wanted > room)
        throw OperationException("A transition of " + std::to_string(wanted) +
                                 " frames does not fit: there is room for " + std::to_string(room));

    std::shared_ptr<Transition> transition = Transition::Create(plugin);
    transition->SetLength(Frame(wanted));
    transition->SetRelativeStartFrame(Frame(!cut.from ? 0 : cut.to ? -(wanted / 2) : -wanted));
    if (cut.from) {
        cut.from->SetOutgoingTransition(transition);
        transition->SetFromObject(cut.from->ID());
    }
    if (cut.to) {
        cut.to->SetIncomingTransition(transition);
        transition->SetToObject(cut.to->ID());
    }
    work.Commit();
    return transition;
}

void RemoveTransition(const std::shared_ptr<Project> &project, const Object &object, ObjectEnd end)
{
    SequenceWork work(project, u"Remove transition");
    work.TrackOf(object);
    const auto transition = TransitionAt(*object, end);
    if (!transition)
        throw OperationException("Object " + Quoted(object->Name()) + " has no transition there");
    work.Lose(transition, object);
    work.Commit();
}

} // namespace marlet::project
