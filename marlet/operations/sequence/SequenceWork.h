#pragma once

#include <marlet/history/Edit.h>
#include <marlet/operations/OperationException.h>
#include <marlet/operations/RefusalWords.h>
#include <marlet/operations/sequence/SequenceOptions.h>
#include <marlet/operations/sequence/Timeline.h>

#include <memory>
#include <string>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class EditorSequence;
class Transition;

/// @throws OperationException if the project has none
std::shared_ptr<EditorSequence> RequireSequence(const Project &project);
/// @throws OperationException if the object is on none
std::shared_ptr<AbstractSequenceTrack> RequireTrackOf(const EditorSequence &sequence,
                                                      const std::shared_ptr<AbstractSequenceObject> &object);

/// The edit of one operation on the sequence of a project, and the steps that operations are made of. The
/// steps announce what they change, and may leave objects in one another's way. Commit refuses that, and
/// leaves the sequence in order:
///
/// - What was changed overlaps nothing, and leaves neither the frames of the sequence nor those of its asset.
/// - A transition that two objects share stands in the slots of both and names both. It goes when one of them
///   leaves the cut. A transition at one end of an object stays with it. Either goes when the object gets too
///   short for it.
/// - A link names each other's partner, or none. The tails of two partners that were cut become partners.
/// - The assets' lists of instances name the objects.
///
/// Frames are of the sequence, ends are exclusive. All steps throw OperationException.
class SequenceWork
{
public:
    using Track = std::shared_ptr<AbstractSequenceTrack>;
    using Object = std::shared_ptr<AbstractSequenceObject>;
    using TransitionPointer = std::shared_ptr<Transition>;

    /// @throws OperationException without a sequence
    SequenceWork(const std::shared_ptr<Project> &project, const WideString &label);

    const std::shared_ptr<Project> &Document() const { return edit_.Document(); }
    const std::shared_ptr<EditorSequence> &Sequence() const { return sequence_; }
    project::Edit &Edit() { return edit_; }
    void Commit();

    // Questions

    Track TrackOf(const Object &object) const { return RequireTrackOf(*sequence_, object); }
    /// The object, and its partner if that goes along.
    std::vector<Object> Group(const Object &object, Partner partner) const;
    std::vector<Track> TracksOfGroup(const std::vector<Object> &group) const;
    /// Those of the choice and these, in the order of the sequence.
    std::vector<Track> Chosen(const TrackChoice &choice, const std::vector<Track> &also) const;
    std::shared_ptr<AbstractAsset> AssetOf(const AbstractSequenceObject &object) const;

    // Steps

    /// Brings an object onto a track.
    void Put(const Object &object, const Track &track, long long start, long long end);
    /// Off its track, without partner and without shared transitions.
    void Take(const Object &object);
    void SetFrames(const Object &object, long long start, long long end);
    void MoveTo(const Object &object, const Track &track, long long start);
    /// The picture does not move under the new edges.
    void Trim(const Object &object, long long start, long long end);
    /// Shows other frames of the asset, so many later.
    void Slip(const Object &object, long long frames);
    /// The object becomes the head; the tail is returned.
    Object Cut(const Object &object, long long frame);
    /// Leaves nothing in these frames of a track.
    void Clear(const Track &track, long long start, long long end);
    /// Makes room in front of a frame; what is on the frame is cut.
    void Open(const Track &track, long long frame, long long frames);
    /// Moves what starts on a frame or behind it.
    void Shift(const Track &track, long long frame, long long frames);
    /// Moves an object and what comes behind it.
    void ShiftFrom(const Object &object, long long frames);
    void ShiftBehind(const Object &object, long long frames);
    void Link(const Object &a, const Object &b);
    /// Also the partner, if it names the object.
    void Unlink(const Object &object);
    /// Takes the transition out of the slots that it is in.
    void Lose(TransitionPointer transition, const Object &holder);
    /// Refuses, at the end, an object that shows frames that its asset does not have.
    void RequireAssetFrames(const Object &object) { showing_.push_back(object); }

private:
    void RequireInside(long long start, long long end) const;
    void RequireFree(const Object &object) const;
    void RequireAssetFramesOf(const AbstractSequenceObject &object) const;
    void ShiftPosition(const Track &track, unsigned int position, long long frames);
    void MoveContent(const Object &object, long long frames);
    void LoseShared(const Object &object, ObjectEnd end);
    bool IsInOrder(const Object &object, ObjectEnd end, const TransitionPointer &transition) const;
    void SettleTransitions(const Object &object);
    void LinkTails();

    struct CutObject {
        Object head;
        Object tail;
        int frame = 0;
    };

    project::Edit edit_;
    std::shared_ptr<EditorSequence> sequence_;
    std::vector<Object> changed_;
    std::vector<Object> showing_; ///< those that may show more of their assets
    std::vector<CutObject> cuts_;
};

/// On no track, without partner and transitions.
std::shared_ptr<AbstractSequenceObject> CopyOf(const std::shared_ptr<AbstractSequenceObject> &object);
const std::shared_ptr<Transition> &TransitionAt(const AbstractSequenceObject &object, ObjectEnd end);
bool IsShared(const Transition &transition);
/// What the transition at its other end leaves of an object.
long long RoomFor(const AbstractSequenceObject &object, ObjectEnd end);

/// How many frames of the asset an object shows in so many of the sequence, and the other way round, rounded
/// down. At a speed that is not above 0 as many.
long long AssetFrames(const AbstractSequenceObject &object, long long frames);
long long FramesFromAsset(const AbstractSequenceObject &object, long long assetFrames);

int Frame(long long frame);
std::string SpanText(long long start, long long end);
OperationException NotFree(const AbstractSequenceTrack &track, long long start, long long end,
                           const AbstractSequenceObject &other);

} // namespace marlet::project
