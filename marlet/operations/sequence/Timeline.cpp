#include <marlet/operations/sequence/Timeline.h>

#include <marlet/editor/AbstractSequenceObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/SequenceObjectList.h>
#include <marlet/editor/Transition.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/project/AbstractAsset.h>

#include <algorithm>

namespace marlet::project
{

namespace
{

using Track = std::shared_ptr<AbstractSequenceTrack>;
using Object = std::shared_ptr<AbstractSequenceObject>;

} // namespace

std::vector<Track> TracksOf(const EditorSequence &sequence)
{
    std::vector<Track> tracks(sequence.VideoTracks().begin(), sequence.VideoTracks().end());
    tracks.insert(tracks.end(), sequence.AudioTracks().begin(), sequence.AudioTracks().end());
    return tracks;
}

std::vector<Object> ObjectsOf(const AbstractSequenceTrack &track)
{
    std::vector<Object> objects;
    objects.reserve(track.Objects().Count());
    for (unsigned int i = 0; i < track.Objects().Count(); ++i)
        objects.push_back(track.Objects()[i]);
    return objects;
}

std::vector<Object> ObjectsOf(const EditorSequence &sequence)
{
    std::vector<Object> objects;
    for (const Track &track : TracksOf(sequence)) {
        const std::vector<Object> onTrack = ObjectsOf(*track);
        objects.insert(objects.end(), onTrack.begin(), onTrack.end());
    }
    return objects;
}

bool HasFrames(AssetType type)
{
    return type == AssetType::Media || type == AssetType::Composition;
}

bool AreLinked(const AbstractSequenceObject &a, const AbstractSequenceObject &b)
{
    return a.LinkedObjectID() == b.ID() && b.LinkedObjectID() == a.ID();
}

Object PartnerOf(const EditorSequence &sequence, const AbstractSequenceObject &object)
{
    Object partner = sequence.FindObjectByID(object.LinkedObjectID());
    return partner && partner.get() != &object && AreLinked(object, *partner) ? partner : nullptr;
}

Object NeighbourAt(const AbstractSequenceTrack &track, const Object &object, ObjectEnd end)
{
    if (end == ObjectEnd::Tail)
        return track.Objects().GetByStartFrame(object->EndFrame());
    Object previous;
    Object next;
    track.Objects().FindAdjacentObjects(object->StartFrame(), previous, next, object);
    return previous && previous->EndFrame() == object->StartFrame() ? previous : nullptr;
}

long long FramesIntoHead(const AbstractSequenceObject &object)
{
    const std::shared_ptr<Transition> &transition = object.IncomingTransition();
    return transition ? std::max(0LL, static_cast<long long>(transition->RelativeStartFrame()) +
                                          transition->Length())
                      : 0;
}

long long FramesIntoTail(const AbstractSequenceObject &object)
{
    const std::shared_ptr<Transition> &transition = object.OutgoingTransition();
    return transition ? std::max(0LL, -static_cast<long long>(transition->RelativeStartFrame())) : 0;
}

} // namespace marlet::project
