#pragma once

#include "Document.h"
#include "Timeline.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace marlet::project
{
class AbstractAsset;
class AbstractPlugin;
} // namespace marlet::project

namespace marlet::tool
{

/// Whether the partner of an object goes along.
enum class Partner { GoesAlong, Stays };

enum class ObjectEnd { Head, Tail };

/// Changes to a sequence that leave it in order. The model keeps nothing in step, so this does:
///
/// - Nothing overlaps, and nothing leaves the frames of the sequence or those of its asset.
/// - A transition that two objects share stands in the slots of both and names both. It goes when one of them
///   leaves the cut. A transition at one end of an object stays with it. Either goes when the object gets too
///   short for it.
/// - A link names each other's partner, or none.
///
/// Each operation throws Failure where it cannot be done, and may then have done a part of its work: the
/// project is to be dropped. Frames are of the sequence, the end is exclusive.
class SequenceEdit
{
public:
    /// The project must have a sequence.
    explicit SequenceEdit(ProjectPointer project);

    struct Insertion {
        std::shared_ptr<project::AbstractAsset> asset;
        TrackPointer track;
        TrackPointer soundTrack; ///< of its sound, linked to it; may be empty
        int start = 0;
        int assetStart = 0;
        std::optional<int> length; ///< up to the end of the asset if not given
    };

    std::vector<ObjectPointer> Insert(const Insertion &insertion);
    /// Only the object itself changes its track.
    void Move(const ObjectPointer &object, long long start, const TrackPointer &track, Partner partner);
    void Remove(const ObjectPointer &object, Partner partner);
    /// The picture does not move under the new edge. A partner is trimmed by as many frames.
    void Trim(const ObjectPointer &object, long long start, long long end, Partner partner);
    /// The object becomes the head. The tails, of the object first; a partner is split if the frame is
    /// inside of it.
    std::vector<ObjectPointer> Split(const ObjectPointer &object, int frame, Partner partner);
    /// Between the object and the one that it meets at that end, or at the object's end alone if it meets
    /// none or is not to share it. What was there goes. Without a length it is half a second, or less if
    /// there is no room.
    TransitionPointer SetTransition(const ObjectPointer &object, ObjectEnd end,
                                    const std::shared_ptr<project::AbstractPlugin> &plugin,
                                    std::optional<int> length, bool mayShare);
    /// Whether there was one.
    bool RemoveTransition(const ObjectPointer &object, ObjectEnd end);

    /// What went, and why nobody was asked: one line each.
    const std::vector<std::string> &Losses() const { return losses_; }

private:
    TrackPointer TrackOf(const project::AbstractSequenceObject &object) const;
    std::vector<ObjectPointer> Group(const ObjectPointer &object, Partner partner) const;
    void RequireRoom(const project::AbstractSequenceTrack &track, long long start, long long end,
                     const std::vector<ObjectPointer> &passedOver) const;
    void RequireAssetFrames(const project::AbstractSequenceObject &object) const;
    std::optional<int> LengthOf(const project::AbstractAsset &asset) const;
    ObjectPointer Place(const Insertion &insertion, const TrackPointer &track, long long length);
    void MoveOne(const ObjectPointer &object, long long start, const TrackPointer &track,
                 const std::vector<ObjectPointer> &group);
    void TrimOne(const ObjectPointer &object, long long start, long long end,
                 const std::vector<ObjectPointer> &group);
    ObjectPointer SplitOne(const ObjectPointer &object, int frame);
    ObjectPointer NeighbourAt(const ObjectPointer &object, ObjectEnd end) const;
    void LoseTransition(TransitionPointer transition);
    void LoseSharedTransition(const project::AbstractSequenceObject &object, ObjectEnd end);
    void LoseTransitionsThatDoNotFit(const project::AbstractSequenceObject &object);

    ProjectPointer project_;
    SequencePointer sequence_;
    std::vector<std::string> losses_;
};

} // namespace marlet::tool
