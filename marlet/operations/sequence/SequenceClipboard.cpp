#include <marlet/operations/sequence/SequenceClipboard.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/Transition.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/foundation/Numbers.h>
#include <marlet/operations/sequence/SequenceRoom.h>
#include <marlet/operations/sequence/SequenceWork.h>
#include <marlet/project/Project.h>

#include <algorithm>
#include <optional>

namespace marlet::project
{

namespace
{

using Object = SequenceWork::Object;
using Track = SequenceWork::Track;
using Index = std::optional<std::size_t>;

struct CopiedObject {
    Object object; ///< with the frames of its source
    TrackType type = {};
    std::size_t track = 0; ///< among those of its type
    Index partner = {};
};

struct CopiedTransition {
    std::shared_ptr<Transition> transition;
    Index from = {};
    Index to = {};
};

std::vector<Track> TracksOfType(const EditorSequence &sequence, TrackType type)
{
    std::vector<Track> tracks = TracksOf(sequence);
    const auto isOther = [type](const Track &track) { return track->Type() != type; };
    tracks.erase(std::remove_if(tracks.begin(), tracks.end(), isOther), tracks.end());
    return tracks;
}

std::size_t PlaceOf(const std::vector<Track> &tracks, const Track &track)
{
    const auto place = std::find(tracks.begin(), tracks.end(), track);
    if (place == tracks.end())
        throw OperationException("Track " + Quoted(track->Name()) + " is none of the sequence for that type");
    return static_cast<std::size_t>(place - tracks.begin());
}

/// A copy with properties and private data of its own: those of a Transition::Copy are the source's. An empty
/// pointer if the plug-in is gone.
std::shared_ptr<Transition> CloneOf(const std::shared_ptr<Transition> &source)
{
    const std::shared_ptr<AbstractPlugin> plugin = source->Plugin();
    if (!plugin || source->IsStandIn())
        return Transition::Copy(source);
    return Transition::Copy(Transition::CreateFromXml(plugin, source->Serialize()));
}

void Attach(const std::shared_ptr<Transition> &transition, const Object &from, const Object &to)
{
    if (from) {
        from->SetOutgoingTransition(transition);
        transition->SetFromObject(from->ID());
    }
    if (to) {
        to->SetIncomingTransition(transition);
        transition->SetToObject(to->ID());
    }
}

/// By track and time, each once.
std::vector<Object> Sorted(const EditorSequence &sequence, std::vector<Object> objects)
{
    const std::vector<Track> tracks = TracksOf(sequence);
    const auto order = [&](const Object &object) {
        const Track track = RequireTrackOf(sequence, object);
        return std::pair(std::find(tracks.begin(), tracks.end(), track), object->StartFrame());
    };
    std::sort(objects.begin(), objects.end(),
              [&](const Object &a, const Object &b) { return order(a) < order(b); });
    objects.erase(std::unique(objects.begin(), objects.end()), objects.end());
    return objects;
}

Index IndexOf(const std::vector<Object> &objects, const kytl::KyID &id)
{
    const auto place = std::find_if(objects.begin(), objects.end(),
                                    [&](const Object &object) { return object->ID() == id; });
    return place == objects.end() ? Index() : static_cast<std::size_t>(place - objects.begin());
}

} // namespace

struct CopiedObjects_Impl {
    std::weak_ptr<EditorSequence> sequence;
    std::vector<CopiedObject> objects;
    std::vector<CopiedTransition> transitions;
    int start = 0;
    int end = 0;

    void Take(const std::vector<Object> &sources, const std::shared_ptr<EditorSequence> &of);
    void TakeTransitions(const std::vector<Object> &sources, std::size_t index);
    std::size_t FirstTrack(TrackType type) const;
    /// Where the copies of a type go: by their own tracks, of which the first becomes the given one.
    std::vector<Track> Destinations(const EditorSequence &in, TrackType type, const Track &first) const;
};

void CopiedObjects_Impl::Take(const std::vector<Object> &sources, const std::shared_ptr<EditorSequence> &of)
{
    sequence = of;
    start = sources[0]->StartFrame();
    end = sources[0]->EndFrame();
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const Object &source = sources[i];
        const Track track = RequireTrackOf(*of, source);
        const Object partner = PartnerOf(*of, *source);
        objects.push_back({CopyOf(source), track->Type(), PlaceOf(TracksOfType(*of, track->Type()), track),
                           partner ? IndexOf(sources, partner->ID()) : Index()});
        TakeTransitions(sources, i);
        start = std::min(start, source->StartFrame());
        end = std::max(end, source->EndFrame());
    }
}

/// A shared transition comes with the object before it, if both objects come.
void CopiedObjects_Impl::TakeTransitions(const std::vector<Object> &sources, std::size_t index)
{
    const auto take = [this](const std::shared_ptr<Transition> &source, Index from, Index to) {
        if (std::shared_ptr<Transition> copy = CloneOf(source))
            transitions.push_back({std::move(copy), from, to});
    };
    if (const auto &incoming = sources[index]->IncomingTransition(); incoming && !IsShared(*incoming))
        take(incoming, {}, index);
    if (const auto &outgoing = sources[index]->OutgoingTransition()) {
        const Index to = IsShared(*outgoing) ? IndexOf(sources, outgoing->ToObject()) : Index();
        if (to || !IsShared(*outgoing))
            take(outgoing, index, to);
    }
}

std::size_t CopiedObjects_Impl::FirstTrack(TrackType type) const
{
    std::size_t first = static_cast<std::size_t>(-1);
    for (const CopiedObject &copied : objects)
        if (copied.type == type)
            first = std::min(first, copied.track);
    return first;
}

std::vector<Track> CopiedObjects_Impl::Destinations(const EditorSequence &in, TrackType type,
                                                    const Track &first) const
{
    const std::vector<Track> tracks = TracksOfType(in, type);
    const std::size_t from = FirstTrack(type);
    const std::size_t to = first ? PlaceOf(tracks, first) : from;
    std::vector<Track> destinations;
    for (const CopiedObject &copied : objects) {
        if (copied.type != type)
            continue;
        const std::size_t place = copied.track - from + to;
        if (place >= tracks.size())
            throw OperationException("There are too few tracks for what was copied");
        destinations.push_back(tracks[place]);
    }
    return destinations;
}

CopiedObjects::CopiedObjects(const std::shared_ptr<Project> &project, const Objects &objects, Partner partner)
{
    Require(project, "project");
    const std::shared_ptr<EditorSequence> sequence = RequireSequence(*project);
    Objects sources = objects;
    for (const Object &object : objects) {
        RequireTrackOf(*sequence, object);
        if (Object other = partner == Partner::GoesAlong ? PartnerOf(*sequence, *object) : nullptr)
            sources.push_back(std::move(other));
    }
    if (sources.empty())
        throw OperationException("There is nothing to copy");
    const auto impl = std::make_shared<CopiedObjects_Impl>();
    impl->Take(Sorted(*sequence, std::move(sources)), sequence);
    impl_ = impl;
}

CopiedObjects::CopiedObjects(const CopiedObjects &other) = default;
CopiedObjects &CopiedObjects::operator=(const CopiedObjects &other) = default;
CopiedObjects::~CopiedObjects() = default;

unsigned int CopiedObjects::Count() const
{
    return static_cast<unsigned int>(impl_->objects.size());
}

int CopiedObjects::Length() const
{
    return Saturate(std::int64_t{impl_->end} - impl_->start);
}

CopiedObjects::Objects CopiedObjects::Paste(const std::shared_ptr<Project> &project, int start,
                                            const Track &video, const Track &audio, PlaceMode mode,
                                            const TrackChoice &ripple) const
{
    SequenceWork work(project, u"Paste");
    const CopiedObjects_Impl &data = *impl_;
    if (data.sequence.lock() != work.Sequence())
        throw OperationException("The objects were copied from another sequence");
    // Objects of the video tracks come first, here as in the copy.
    std::vector<Track> tracks = data.Destinations(*work.Sequence(), TrackType::Video, video);
    for (const Track &track : data.Destinations(*work.Sequence(), TrackType::Audio, audio))
        tracks.push_back(track);

    if (mode == PlaceMode::Insert)
        MakeRoom(work, tracks, start, Length(), mode, ripple);
    Objects pasted;
    for (std::size_t i = 0; i < data.objects.size(); ++i) {
        const Object &source = data.objects[i].object;
        const long long at = static_cast<long long>(source->StartFrame()) - data.start + start;
        if (mode == PlaceMode::Overwrite)
            MakeRoom(work, {tracks[i]}, at, source->Length(), mode, ripple);
        pasted.push_back(CopyOf(source));
        work.Put(pasted[i], tracks[i], at, at + source->Length());
        if (data.objects[i].partner && *data.objects[i].partner < i)
            work.Link(pasted[*data.objects[i].partner], pasted[i]);
    }
    for (const CopiedTransition &transition : data.transitions)
        if (const std::shared_ptr<Transition> copy = CloneOf(transition.transition))
            Attach(copy, transition.from ? pasted[*transition.from] : nullptr,
                   transition.to ? pasted[*transition.to] : nullptr);
    work.Commit();
    return pasted;
}

} // namespace marlet::project
