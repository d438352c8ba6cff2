#pragma once

#include <marlet/foundation/Strings.h>
#include <marlet/operations/sequence/SequenceOptions.h>

#include <memory>
#include <optional>
#include <vector>

namespace marlet::project
{

class AbstractAsset;
class AbstractSequenceObject;
class AbstractSequenceTrack;
class Project;
enum class TrackType : int;

// Assets and tracks that come into the sequence of a project, as one Edit each. Frames are of the sequence,
// ends are exclusive. Nothing overlaps, and nothing leaves the frames of the sequence or those of its asset:
// what would is an OperationException, and nothing is changed. Null pointers are std::invalid_argument.
// Belongs to the thread that edits the project.

enum class PlaceMode {
    Free,      ///< where nothing is
    Overwrite, ///< in place of what is there, of which what lies around stays
    Insert     ///< what is there is cut and makes room, as do the tracks of the ripple
};

struct Placement {
    std::shared_ptr<AbstractAsset> asset;
    std::shared_ptr<AbstractSequenceTrack> track;
    /// Of its sound, which becomes the partner of the picture on the video track; may be empty.
    std::shared_ptr<AbstractSequenceTrack> soundTrack = {};
    int start = 0;
    int assetStart = 0;
    std::optional<int> length = {}; ///< up to the end of the asset if not given
};

/// The new objects, on the first track and then on that of the sound.
MARLET_EXPORT std::vector<std::shared_ptr<AbstractSequenceObject>>
PlaceAsset(const std::shared_ptr<Project> &project, const Placement &placement,
           PlaceMode mode = PlaceMode::Free, const TrackChoice &ripple = TrackChoice::None());

/// Behind the others of its type.
MARLET_EXPORT std::shared_ptr<AbstractSequenceTrack> AddTrack(const std::shared_ptr<Project> &project,
                                                              TrackType type, const WideString &name);

} // namespace marlet::project
