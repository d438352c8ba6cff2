#pragma once

#include <marlet/operations/curves/AnimatedProperty.h>

#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace marlet::project
{

class Project;

// Operations on the key frames of a property, as one Edit each. Times are milliseconds relative to the owner
// of the property. Key frames keep their IDs unless something else is said.
//
// What cannot be done as asked is an OperationException, and nothing is changed. A null project is
// std::invalid_argument, the ID of no key frame of the property std::out_of_range. Belongs to the thread that
// edits the project.
//
// A path in space is what the model makes of the points of its key frames: it bends where these come and go,
// whatever an operation keeps of the curve in time.

/// Both ends are in it.
struct TimeSpan {
    int first = std::numeric_limits<int>::min();
    int last = std::numeric_limits<int>::max();
};

/// In the order of the list.
MARLET_EXPORT std::vector<kytl::KyID> KeyFramesIn(const AnimatedProperty &property,
                                                  const TimeSpan &span = {});

/// Adds a key frame with the value that the property has at that time, and splits the curve piece there into
/// the two that go the same way. The ID is that of the new key frame, or of the one that is there already.
///
/// A value of several components has one handle for all of them. Where these go different ways, the pieces
/// run as near to the former one as handles in time let them, within about 1 % with EaseInOut. Whole numbers
/// are rounded to whole numbers on both sides.
/// @throws OperationException if the property cannot be animated
MARLET_EXPORT kytl::KyID InsertKeyFrame(const std::shared_ptr<Project> &project,
                                        const AnimatedProperty &property, int time);

MARLET_EXPORT void RemoveKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                                   const std::vector<kytl::KyID> &keys);

/// Moves key frames in time, those that stay may be passed. Handles stay as they are.
/// @throws OperationException if one would come to stand on one that stays
MARLET_EXPORT void MoveKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                                 const std::vector<kytl::KyID> &keys, int milliseconds);

/// Multiplies the distances in time to the pivot by a factor above 0, rounded to milliseconds. Curve pieces
/// between two of the key frames keep their shape.
/// @throws OperationException if two would come to stand on one another, or one on one that stays
MARLET_EXPORT void ScaleKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                                  const std::vector<kytl::KyID> &keys, int pivot, double factor);

/// Turns the curve between the first and the last key frame of the span round in time. Curve pieces keep
/// their shape, but one that holds its value goes on to hold that of its beginning.
MARLET_EXPORT void ReverseKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                                    const TimeSpan &span = {});

/// Copies in the order of the list, to be pasted to any property of the same type, also of another project.
MARLET_EXPORT std::vector<KeyFrame> CopyKeyFrames(const AnimatedProperty &property,
                                                  const std::vector<kytl::KyID> &keys);

/// Adds key frames with new IDs, the first at that time, the others at their distances to it. What stood
/// between the first and the last of them goes, so that the curve is the one that was copied.
/// @throws OperationException if the property cannot be animated, or has values of another type
MARLET_EXPORT std::vector<kytl::KyID> PasteKeyFrames(const std::shared_ptr<Project> &project,
                                                     const AnimatedProperty &property,
                                                     const std::vector<KeyFrame> &copied, int time);

/// How a value goes from one key frame to the next: the presets of the web's style sheets with these names,
/// and Hold.
enum class Easing : int {
    Linear,
    EaseIn,    ///< starts slowly
    EaseOut,   ///< ends slowly
    EaseInOut, ///< both
    Hold,      ///< stays, and jumps at the end
};

/// "linear", "ease-in", "ease-out", "ease-in-out", "hold"
MARLET_EXPORT const char *NameOf(Easing easing);
/// Nothing if none has that name.
MARLET_EXPORT std::optional<Easing> FindEasing(std::string_view name);

/// Shapes the curve pieces that begin at the key frames.
MARLET_EXPORT void EaseKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                                 const std::vector<kytl::KyID> &keys, Easing easing);

/// Removes key frames of the span and shapes curve pieces anew, so that no component of the value is further
/// from where it was than the tolerance, in the units of the property: at each millisecond, or in more than
/// 20 seconds at 10,000 times or more and at all former key frames. The first and the last key frame stay,
/// and the curve outside of them. Returns how many were removed.
/// @throws OperationException if the tolerance is negative
MARLET_EXPORT unsigned int SimplifyKeyFrames(const std::shared_ptr<Project> &project,
                                             const AnimatedProperty &property, double tolerance,
                                             const TimeSpan &span = {});

/// Gives the curve a linear key frame for each frame at a rate, counted from the start of the owner, with the
/// value that it has there, and at both ends of the span: from the first key frame to the last at most. The
/// curve outside keeps its shape as with InsertKeyFrame.
/// @throws OperationException if the rate is not above 0 and at most 1000, or the key frames would be more
/// than a million
MARLET_EXPORT void BakeKeyFrames(const std::shared_ptr<Project> &project, const AnimatedProperty &property,
                                 double framesPerSecond, const TimeSpan &span = {});

} // namespace marlet::project
