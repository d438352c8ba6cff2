#pragma once

#include <memory>

namespace marlet::project
{

class AbstractSequenceObject;
class Edit;

/// Moves all key frames of an object and its effects by frames at a rate, so that they stay with the picture
/// while the start of the object moves.
void ShiftKeyFrames(Edit &edit, const std::shared_ptr<AbstractSequenceObject> &object, long long frames,
                    double frameRate);

} // namespace marlet::project
