#pragma once

#include <marlet/exchange/otio/OtioSchema.h>

#include <cstddef>
#include <vector>

namespace marlet::project
{

struct ExchangeOptions;
enum class TrackType : int;

/// An item of a track where it stands in the whole timeline, in frames that may have fractions.
struct OtioSpan {
    const Json *item = nullptr;
    double start = 0;
    double end = 0;
    double source = 0;    ///< of a clip: the first frame of its media that is shown
    std::size_t next = 0; ///< of a transition: the clip behind it
};

/// What becomes one track.
struct OtioLane {
    TrackType type{};
    NarrowString name;
    const Json *track = nullptr; ///< null for one that nested layers or a single item need
    std::vector<OtioSpan> clips;
    std::vector<OtioSpan> gaps;
    std::vector<OtioSpan> transitions; ///< both ends are the cut
};

/// The tracks of a timeline's stack, from the lowest on. What is nested stands in place of what held it: the
/// lowest layer of a nested stack on the track itself, those above on tracks of their own behind it. What was
/// left out on the way is told.
/// @throws ExchangeException
std::vector<OtioLane> LanesOf(const Json &stack, const OtioClock &clock, const ExchangeOptions &options);

} // namespace marlet::project
