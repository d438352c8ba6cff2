#include <marlet/operations/sequence/SequenceRemoval.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/operations/sequence/SequenceRoom.h>
#include <marlet/operations/sequence/SequenceWork.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

using Object = SequenceWork::Object;
using Track = SequenceWork::Track;

struct Span {
    int start = 0;
    int end = 0;
};

/// The frames up to the last object in which none of the tracks has anything.
std::vector<Span> GapsOf(const std::vector<Track> &tracks)
{
    std::vector<Span> filled;
    for (const Track &track : tracks)
        for (const Object &object : ObjectsOf(*track))
            filled.push_back({object->StartFrame(), object->EndFrame()});
    std::sort(filled.begin(), filled.end(), [](const Span &a, const Span &b) { return a.start < b.start; });
    std::vector<Span> gaps;
    int covered = 0;
    for (const Span &span : filled) {
        if (span.start > covered)
            gaps.push_back({covered, span.start});
        covered = std::max(covered, span.end);
    }
    return gaps;
}

void RequireFrames(int start, int end)
{
    if (start >= end)
        throw OperationException("There are no frames from " + std::to_string(start) + " to " +
                                 std::to_string(end));
}

} // namespace

void RemoveObject(const std::shared_ptr<Project> &project, const Object &object, Partner partner,
                  const TrackChoice &ripple)
{
    SequenceWork work(project, u"Remove object");
    const std::vector<Object> group = work.Group(object, partner);
    const std::vector<Track> tracks = work.TracksOfGroup(group);
    for (std::size_t i = 0; i < group.size(); ++i) {
        const int length = group[i]->Length();
        const int end = group[i]->EndFrame();
        work.Take(group[i]);
        if (!ripple.IsNone())
            work.Shift(tracks[i], end, -length);
    }
    RippleOthers(work, ripple, tracks, object->EndFrame(), -object->Length());
    work.Commit();
}

void LiftFrames(const std::shared_ptr<Project> &project, int start, int end, const TrackChoice &tracks)
{
    SequenceWork work(project, u"Lift");
    RequireFrames(start, end);
    for (const Track &track : work.Chosen(tracks, {}))
        work.Clear(track, start, end);
    work.Commit();
}

void ExtractFrames(const std::shared_ptr<Project> &project, int start, int end, const TrackChoice &tracks)
{
    SequenceWork work(project, u"Extract");
    RequireFrames(start, end);
    for (const Track &track : work.Chosen(tracks, {})) {
        work.Clear(track, start, end);
        work.Shift(track, end, static_cast<long long>(start) - end);
    }
    work.Commit();
}

int CloseGaps(const std::shared_ptr<Project> &project, const TrackChoice &tracks)
{
    SequenceWork work(project, u"Close gaps");
    const std::vector<Track> chosen = work.Chosen(tracks, {});
    const std::vector<Span> gaps = GapsOf(chosen);
    int closed = 0;
    for (auto gap = gaps.rbegin(); gap != gaps.rend(); ++gap) {
        for (const Track &track : chosen)
            work.Shift(track, gap->end, static_cast<long long>(gap->start) - gap->end);
        closed += gap->end - gap->start;
    }
    work.Commit();
    return closed;
}

} // namespace marlet::project
