#include <marlet/operations/sequence/SequenceRoom.h>

#include <algorithm>

namespace marlet::project
{

using Track = SequenceWork::Track;

void MakeRoom(SequenceWork &work, const std::vector<Track> &tracks, long long start, long long length,
              PlaceMode mode, const TrackChoice &ripple)
{
    if (length < 1)
        return;
    if (mode == PlaceMode::Overwrite)
        for (const Track &track : tracks)
            work.Clear(track, start, start + length);
    if (mode == PlaceMode::Insert)
        for (const Track &track : work.Chosen(ripple, tracks))
            work.Open(track, start, length);
}

void RippleOthers(SequenceWork &work, const TrackChoice &ripple, const std::vector<Track> &edited,
                  long long frame, long long frames)
{
    for (const Track &track : work.Chosen(ripple, {}))
        if (std::find(edited.begin(), edited.end(), track) == edited.end())
            work.Shift(track, frame, frames);
}

} // namespace marlet::project
