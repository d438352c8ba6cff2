#include <marlet/operations/sequence/SequenceOptions.h>

#include <marlet/foundation/Arguments.h>

#include <algorithm>

namespace marlet::project
{

TrackChoice::TrackChoice() = default;
TrackChoice::TrackChoice(const TrackChoice &other) = default;
TrackChoice &TrackChoice::operator=(const TrackChoice &other) = default;
TrackChoice::~TrackChoice() = default;

TrackChoice TrackChoice::None()
{
    return {};
}

TrackChoice TrackChoice::All()
{
    TrackChoice choice;
    choice.all_ = true;
    return choice;
}

TrackChoice TrackChoice::Of(std::vector<std::shared_ptr<AbstractSequenceTrack>> tracks)
{
    for (const auto &track : tracks)
        Require(track, "track");
    TrackChoice choice;
    choice.tracks_ = std::move(tracks);
    return choice;
}

bool TrackChoice::Has(const AbstractSequenceTrack &track) const
{
    return all_ || std::any_of(tracks_.begin(), tracks_.end(),
                               [&](const auto &chosen) { return chosen.get() == &track; });
}

} // namespace marlet::project
