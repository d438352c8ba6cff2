#pragma once

#include <marlet/operations/sequence/SequencePlacing.h>
#include <marlet/operations/sequence/SequenceWork.h>

#include <vector>

namespace marlet::project
{

/// Makes the frames from a start on free for objects that come, as far as the mode asks for that. With an
/// empty length there is nothing to do.
void MakeRoom(SequenceWork &work, const std::vector<SequenceWork::Track> &tracks, long long start,
              long long length, PlaceMode mode, const TrackChoice &ripple);

/// Moves what starts on a frame or behind it on the tracks of the ripple but these, which the operation moves
/// itself.
void RippleOthers(SequenceWork &work, const TrackChoice &ripple,
                  const std::vector<SequenceWork::Track> &edited, long long frame, long long frames);

} // namespace marlet::project
