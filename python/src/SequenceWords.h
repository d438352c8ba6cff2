#pragma once

#include "Handles.h"
#include "Values.h"

#include <marlet/editor/AbstractSequenceTrack.h>
#include <marlet/operations/sequence/SequenceOptions.h>
#include <marlet/operations/sequence/SequencePlacing.h>
#include <marlet/operations/sequence/Timeline.h>

#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace marlet::python
{

// What operations on the sequence are told in Python.

/// Tracks, the word "all", or none.
using Ripple = std::optional<std::variant<std::string, std::vector<TrackHandle>>>;
/// @throws py::value_error for another word
TrackChoice RippleFrom(const DocumentPointer &document, const Ripple &ripple);

inline const Words<PlaceMode> kPlaceModes{
    {PlaceMode::Free, "free"}, {PlaceMode::Overwrite, "overwrite"}, {PlaceMode::Insert, "insert"}};
inline const Words<ObjectEnd> kEnds{{ObjectEnd::Head, "head"}, {ObjectEnd::Tail, "tail"}};

inline Partner PartnerFrom(bool goesAlong)
{
    return goesAlong ? Partner::GoesAlong : Partner::Stays;
}

} // namespace marlet::python
