#pragma once

#include <marlet/foundation/Export.h>

#include <memory>
#include <vector>

namespace marlet::project
{

class AbstractSequenceObject;
class AbstractSequenceTrack;
class EditorSequence;
enum class AssetType : int;

// What a host asks of a sequence again and again. Frames are of the sequence; nothing changes it. Belongs to
// the thread that edits the project.

enum class ObjectEnd { Head, Tail };

/// The video tracks, then the audio tracks.
MARLET_EXPORT std::vector<std::shared_ptr<AbstractSequenceTrack>> TracksOf(const EditorSequence &sequence);
/// Track by track, each by time.
MARLET_EXPORT std::vector<std::shared_ptr<AbstractSequenceObject>>
ObjectsOf(const AbstractSequenceTrack &track);
MARLET_EXPORT std::vector<std::shared_ptr<AbstractSequenceObject>> ObjectsOf(const EditorSequence &sequence);

/// Whether it matters which frame of the asset is shown: stills are the same in all of theirs.
MARLET_EXPORT bool HasFrames(AssetType type);

/// Whether each of them names the other as its partner.
MARLET_EXPORT bool AreLinked(const AbstractSequenceObject &a, const AbstractSequenceObject &b);
/// The partner that names the object as its own, or an empty pointer.
MARLET_EXPORT std::shared_ptr<AbstractSequenceObject> PartnerOf(const EditorSequence &sequence,
                                                                const AbstractSequenceObject &object);
/// The object of the track that this one meets at that end, or an empty pointer.
MARLET_EXPORT std::shared_ptr<AbstractSequenceObject>
NeighbourAt(const AbstractSequenceTrack &track, const std::shared_ptr<AbstractSequenceObject> &object,
            ObjectEnd end);

// Where a transition lies: operations count its relative start frame from the cut.

/// How many frames behind the start of the object the transition into it takes, and how many before its end
/// the one out of it; none without a transition.
MARLET_EXPORT long long FramesIntoHead(const AbstractSequenceObject &object);
MARLET_EXPORT long long FramesIntoTail(const AbstractSequenceObject &object);

} // namespace marlet::project
