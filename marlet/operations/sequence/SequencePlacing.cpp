#include <marlet/operations/sequence/SequencePlacing.h>

#include <marlet/editor/AudioObject.h>
#include <marlet/editor/AudioTrack.h>
#include <marlet/editor/EditorSequence.h>
#include <marlet/editor/VideoTrack.h>
#include <marlet/editor/VisualObject.h>
#include <marlet/foundation/Arguments.h>
#include <marlet/operations/sequence/SequenceRoom.h>
#include <marlet/operations/sequence/SequenceWork.h>
#include <marlet/project/AbstractAsset.h>
#include <marlet/project/AssetLength.h>

namespace marlet::project
{

namespace
{

using Object = SequenceWork::Object;
using Track = SequenceWork::Track;

void RequireKind(const AbstractAsset &asset, TrackType kind)
{
    // What a file holds that is not there is unknown.
    if (asset.IsOffline() || (kind == TrackType::Video ? asset.HasVideo() : asset.HasAudio()))
        return;
    throw OperationException("Asset " + Quoted(asset.Name()) + " has no " +
                             (kind == TrackType::Video ? "picture" : "sound"));
}

long long LengthOf(const Placement &placement, double frameRate)
{
    const AbstractAsset &asset = *placement.asset;
    const std::optional<int> whole = AssetLength(asset, frameRate);
    if (placement.assetStart < 0 || (whole && placement.assetStart >= *whole))
        throw OperationException("Asset " + Quoted(asset.Name()) + " has no frame " +
                                 std::to_string(placement.assetStart) +
                                 (whole ? ", only " + CountedFrames(*whole) : ""));
    if (placement.length)
        return *placement.length;
    if (!whole)
        throw OperationException("Asset " + Quoted(asset.Name()) +
                                 " has no length of its own: one must be given");
    return static_cast<long long>(*whole) - placement.assetStart;
}

Object Place(SequenceWork &work, const Placement &placement, const Track &track, long long length)
{
    RequireKind(*placement.asset, track->Type());
    Object object;
    if (track->Type() == TrackType::Video)
        object = VisualObject::Create(placement.asset, work.Sequence());
    else
        object = AudioObject::Create(placement.asset, work.Sequence());
    object->SetAssetInstanceStart(placement.assetStart);
    work.Put(object, track, placement.start, placement.start + length);
    work.RequireAssetFrames(object);
    return object;
}

} // namespace

std::vector<Object> PlaceAsset(const std::shared_ptr<Project> &project, const Placement &placement,
                               PlaceMode mode, const TrackChoice &ripple)
{
    Require(placement.asset, "asset");
    Require(placement.track, "track");
    SequenceWork work(project, u"Place asset");
    std::vector<Track> tracks{placement.track};
    if (placement.soundTrack) {
        if (placement.track->Type() != TrackType::Video || placement.soundTrack->Type() != TrackType::Audio)
            throw OperationException("The picture needs a video track, its sound an audio track");
        tracks.push_back(placement.soundTrack);
    }
    const long long length = LengthOf(placement, work.Sequence()->Settings().FrameRate());
    MakeRoom(work, tracks, placement.start, length, mode, ripple);
    std::vector<Object> placed;
    for (const Track &track : tracks)
        placed.push_back(Place(work, placement, track, length));
    if (placed.size() == 2)
        work.Link(placed[0], placed[1]);
    work.Commit();
    return placed;
}

Track AddTrack(const std::shared_ptr<Project> &project, TrackType type, const WideString &name)
{
    SequenceWork work(project, u"Add track");
    const std::shared_ptr<EditorSequence> &sequence = work.Sequence();
    work.Edit().Touch(sequence);
    Track track;
    if (type == TrackType::Video) {
        const auto video = VideoTrack::Create(sequence, name);
        sequence->VideoTracks().Add(video);
        track = video;
    } else {
        const auto audio = AudioTrack::Create(sequence, name);
        sequence->AudioTracks().Add(audio);
        track = audio;
    }
    work.Commit();
    return track;
}

} // namespace marlet::project
