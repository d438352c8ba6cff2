#pragma once

#include <marlet/animation/KeyFrame.h>
#include <marlet/foundation/Strings.h>

#include <map>
#include <memory>
#include <string_view>
#include <vector>

namespace marlet::project
{

class AnimatedProperty;
class Project;
struct ExchangeOptions;

/// What a text says of a key frame, in the texts of its cells; those that it does not say are empty.
struct KeyFrameRow {
    int line = 0;
    NarrowString id;
    NarrowString type;          ///< the tag of the value in the project's file
    NarrowString time;          ///< milliseconds
    NarrowString frame;         ///< in place of a time
    NarrowString interpolation; ///< "bezier", "linear" or "hold"
    NarrowString inTime, inValue, outTime, outValue;
    /// By the names of the components in small letters; "value" of what has one only.
    std::map<NarrowString, NarrowString, std::less<>> components;
};

/// Of ASCII.
NarrowString SmallLetters(std::string_view text);

/// With all cells, whose numbers are read again as the same ones. The rate is in frames per second.
KeyFrameRow RowOf(const KeyFrame &key, double frameRate);

/// That of the options, or else of the composition. @throws OperationException if it is none
double FrameRateOf(const Project &project, const ExchangeOptions &options);

/// The key frames of a property in order. Frames count from the start of the layer at the rate of its
/// composition, unless the options have one.
std::vector<KeyFrameRow> RowsOf(const Project &project, const ExchangeOptions &options);
/// Puts key frames in place of those that a property has, as one Edit.
/// @throws ExchangeException with the line of a row that is none of the property's
void TakeRows(const std::shared_ptr<Project> &project, const std::vector<KeyFrameRow> &rows,
              const ExchangeOptions &options);

} // namespace marlet::project
